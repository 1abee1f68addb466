#pragma once

// QuellaroHalvo in C++20: #include <QuellaroHalvo/QuellaroHalvo.h>. Everything is in the namespace quellaro, and all of
// it is compiled with the host: what crosses into the shared object is the C interface (quellaro_halvo.h, whose
// comments tell of threads, ownership and errors). So a host may be built by another compiler, with other settings of
// the standard library or under a sanitizer, and goes on running with every later 1.x.
//
//   QLHalvoController          prepares a cue and plays it
//   QLHalvoView                where it is seen; drawn into pixels of the host's
//   QLHalvoSwiftUIView         the view, for a declarative interface
//   QLHalvoMerchant            on whose behalf it plays
//   QLHalvoStatus              every answer
//   MainQueue                  where everything happens; a host runs it, or drains it from a loop of its own
//   AudioSessionObservation    told when a sound has ended
//   setConsoleSink             takes what the library prints
//   setLogSink                 takes that too, and what it says on standard error, with levels
//
// Directories, the application's identifier and devices are chosen before the first controller, by the functions of C:
// quellaro_halvo_set_library_directory and those beside it. Main thread only, but for what says otherwise.
//
// A call that gives a quellaro_halvo_result was refused when it is not quellaro_halvo_result_ok, and then calls
// nothing. An exception that a function of the host throws ends in the library, with a line of the log.

#include <QuellaroHalvo/host_controller.h>
#include <QuellaroHalvo/host_main_queue.h>
#include <QuellaroHalvo/host_merchant.h>
#include <QuellaroHalvo/host_types.h>
#include <QuellaroHalvo/host_view.h>
#include <QuellaroHalvo/quellaro_halvo.h>
