#pragma once

// What hosts may call; everything else stays inside the shared object.
#define QLHALVO_EXPORT __attribute__((visibility("default")))
// Of a class that is exported as a whole, what is private.
#define QLHALVO_HIDDEN __attribute__((visibility("hidden")))
