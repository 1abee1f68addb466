#pragma once

// What hosts may call; everything else stays inside the shared object.
#define QLHALVO_EXPORT __attribute__((visibility("default")))
