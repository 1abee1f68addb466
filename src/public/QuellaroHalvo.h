#pragma once

// Everything that a C++ host includes: #include <QuellaroHalvo/QuellaroHalvo.h>. All of it is in the namespace
// quellaro. Hosts in C, and in languages that speak to C, include quellaro_halvo.h instead.
//
//   QLHalvoController            prepares a cue and plays it
//   QLHalvoView                  where it is seen; Compositor and Bitmap draw it into memory
//   QLHalvoSwiftUIView           the view, for a declarative interface
//   QLHalvoMerchant              on whose behalf it plays
//   QLHalvoStatus                every answer
//   MainQueue                    where everything happens; a host runs it, or pumps it from a loop of its own
//   QLAudioSessionDeactivated    told on NSNotificationCenter when a sound has ended
//   quellaro_halvo_use_...       directories and devices, chosen before the first controller as hosts in C choose them
#include "animation/halvo_swiftui_view.h"
#include "animation/halvo_view.h"
#include "c_interface/quellaro_halvo.h"
#include "controller/halvo_controller.h"
#include "platform/dispatch/main_queue.h"
#include "platform/foundation/application.h"
#include "platform/foundation/console.h"
#include "platform/foundation/notification_center.h"
#include "platform/quartzcore/compositor.h"
#include "types/halvo_enums.h"
#include "types/halvo_status.h"
#include "types/merchant.h"
#include "types/notifications.h"
