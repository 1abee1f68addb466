// QuellaroHalvo in C: prepares and plays a short brand cue (sound, vector animation, haptics) in a host application.
// C99, and C++ as it stands. This header is the manual.
//
// Thread. Everything is to be called from one thread, the main-queue thread: the one that drains or runs the loop
// below. What may be called from any thread says so: merchants, the two sinks, quellaro_halvo_loop_stop, names,
// descriptions and versions. A debug build of the library ends the process at any other call from another thread than
// that of the first one. Callbacks come on the main-queue thread, from inside a call of the loop or, where it is said,
// from inside the call that asked for them; they may call anything here.
//
// Ownership. What a function named "create" gives belongs to the caller, who releases it once; releasing null does
// nothing. Every string that is given belongs to the library and lives as long as it is said; strings and arrays that
// are handed in are copied before the call returns. A context pointer is never looked into.
//
// Errors. Text is UTF-8, ended by a zero. Null where it is not allowed, a value that names nothing and text that is not
// UTF-8 are answered with a result (or null, or the value that is said) and change nothing. No C++ exception leaves
// the library; one that a callback throws ends in the library, with a line of the log. A call whose result is not
// quellaro_halvo_result_ok never calls its completion. When memory is short a call answers so and can be made again
// later; of what is under way already only parts fail then, and the answer tells which.
//
// Processes. The library belongs to the process that has used its loop or a controller first. In a child that is forked
// afterwards, all but the functions that only look at a handle answer quellaro_halvo_result_forked (or null, 0 or -1),
// and releasing does nothing: fork first. Once loaded, the library stays until the process ends: dlclose releases
// nothing, since threads of its own may run its code.
#ifndef QUELLARO_HALVO_H
#define QUELLARO_HALVO_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#define QUELLARO_HALVO_VERSION_MAJOR 1
#define QUELLARO_HALVO_VERSION_MINOR 0
#define QUELLARO_HALVO_VERSION_PATCH 0
// Of this header, to be compared with quellaro_halvo_version_number(): 10203 for 1.2.3.
#define QUELLARO_HALVO_VERSION_NUMBER \
  (QUELLARO_HALVO_VERSION_MAJOR * 10000 + QUELLARO_HALVO_VERSION_MINOR * 100 + QUELLARO_HALVO_VERSION_PATCH)

#if defined(__GNUC__)
#define QUELLARO_HALVO_PUBLIC __attribute__((visibility("default")))
#else
#define QUELLARO_HALVO_PUBLIC
#endif

#ifdef __cplusplus
extern "C" {
#endif

// What became of a call. Not the answer of a prepare or a play: that is a status, and comes to the completion.
typedef int32_t quellaro_halvo_result;
enum {
  quellaro_halvo_result_ok = 0,
  quellaro_halvo_result_null_argument = 1,  // something is null that must not be
  quellaro_halvo_result_invalid_value = 2,  // a number, size or enumeration value outside its range
  quellaro_halvo_result_invalid_text = 3,   // text that is not UTF-8
  quellaro_halvo_result_too_late = 4,       // to be chosen before the first controller is created
  quellaro_halvo_result_not_found = 5,      // there is no such directory
  quellaro_halvo_result_busy = 6,           // the loop runs already
  quellaro_halvo_result_out_of_memory = 7,
  quellaro_halvo_result_failed = 8,  // the system refused something else; a line of the log tells what
  quellaro_halvo_result_forked = 9   // this process was forked from one that used the library already
};

// Which parts of a cue are prepared and played.
typedef int64_t quellaro_halvo_type;
enum {
  quellaro_halvo_type_animation_and_sound = 0,
  quellaro_halvo_type_sound_only = 1,
  quellaro_halvo_type_animation_only = 2
};

// The back-end environment the host runs against: chooses the project that usage is reported to, and nothing else.
typedef int64_t quellaro_halvo_environment;
enum { quellaro_halvo_environment_primary = 0, quellaro_halvo_environment_secondary = 1 };

// The backdrop of a view.
typedef int64_t quellaro_halvo_background;
enum { quellaro_halvo_background_black = 0, quellaro_halvo_background_white = 1 };

// The answer of a prepare or a play.
typedef int64_t quellaro_halvo_status;
enum {
  quellaro_halvo_status_success = 800,                   // every required part is ready, or has played
  quellaro_halvo_status_success_with_fallback = 801,     // played, after downloaded assets had to be discarded
  quellaro_halvo_status_prepare_failed = 901,            // a configuration is broken, or nothing is usable
  quellaro_halvo_status_sound_prepare_failed = 902,      // the animation is usable
  quellaro_halvo_status_animation_prepare_failed = 903,  // the sound is usable
  quellaro_halvo_status_already_playing = 904,           // another play is in progress
  quellaro_halvo_status_play_failed = 905,               // failed otherwise
  quellaro_halvo_status_sound_play_failed = 906,         // the sound failed
  quellaro_halvo_status_animation_play_failed = 907,     // the animation failed, or there is no view
  quellaro_halvo_status_not_prepared = 908,              // nothing has been prepared
  quellaro_halvo_status_haptics_prepare_failed = 909,    // sound and animation are usable
  quellaro_halvo_status_haptics_play_failed = 910        // sound and animation have played
};

// What became of a sound.
typedef int64_t quellaro_halvo_sound;
enum {
  quellaro_halvo_sound_none = 0,         // none has ended yet
  quellaro_halvo_sound_heard = 1,        // played to its end, with the volume up
  quellaro_halvo_sound_muted = 2,        // played to its end while the output was muted or its volume 0
  quellaro_halvo_sound_no_server = 3,    // there was no sound server: silence of the sound's length
  quellaro_halvo_sound_broken_off = 4,   // the server went midway, or another prepare took the sound away
  quellaro_halvo_sound_undecodable = 5,  // the file is damaged; the play has answered 905 or 906
};

// Points, which are pixels when the view is drawn; y grows downwards.
typedef struct quellaro_halvo_rectangle {
  double x;
  double y;
  double width;
  double height;
} quellaro_halvo_rectangle;

typedef struct quellaro_halvo_controller quellaro_halvo_controller;
typedef struct quellaro_halvo_view quellaro_halvo_view;
typedef struct quellaro_halvo_merchant quellaro_halvo_merchant;
typedef struct quellaro_halvo_coder quellaro_halvo_coder;

// Whether the raw value is one of the twelve. Any thread.
QUELLARO_HALVO_PUBLIC bool quellaro_halvo_status_is_valid(int64_t raw_value);
// The name as in the tables of the documentation ("successWithFallback"), or a sentence; "unknown" and a sentence that
// says so for any other value. Never null, for ever valid. Any thread.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_status_name(quellaro_halvo_status status);
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_status_description(quellaro_halvo_status status);
// Of a status as an error, whose code is the status: "QuellaroHalvo.QLHalvoStatus". For ever valid. Any thread.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_status_error_domain(void);
// A sentence for a person. Never null, for ever valid. Any thread.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_result_description(quellaro_halvo_result result);

// What is chosen before the first controller. Each may be left out, and is answered with quellaro_halvo_result_too_late
// once a controller has been created.

// Where the library finds Info.json and the built-in cue. Without it: share/quellaro-halvo-1 beside the directory
// that the library lies in. quellaro_halvo_result_not_found when there is no such directory.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_set_bundle_directory(const char* path);
// The application's Library directory, below which alone the library writes; made when it is needed. Null or left out:
// the application identifier below $XDG_DATA_HOME (~/.local/share when that is no absolute path). An empty path is
// quellaro_halvo_result_invalid_value.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_set_library_directory(const char* path);
// The host application's bundle identifier ("com.example.shop"); null, empty or left out: none. One that could name
// another directory (holding "/" or "..", or being ".") is quellaro_halvo_result_invalid_value.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_set_application_identifier(const char* identifier);
// The sound server and the kernel's force-feedback devices: what is used when nothing is chosen.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_use_real_devices(void);
// What mixers show the sound as, beside the program's name; null or left out: "Sound". Not empty.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_set_sound_name(const char* name);
// Nothing of the machine: a sound takes its real duration and nobody hears it. `volume` is the output volume that the
// library reads, 0.0 to 1.0; `has_actuator` whether there seems to be a haptic actuator.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_use_simulated_devices(double volume, bool has_actuator);

// The merchant: on whose behalf a cue is played. Never changes; everything of a merchant may be called from any thread.

// initWithMerchantName:countryCode:city:merchantCategoryCodes:merchantId:
// Null when the name, the country code or the list of codes is null or empty, a code is null, a text is not UTF-8, or
// memory is short. `city` may be null; an id that is null or empty is derived from the name (blanks, "_" and "-"
// removed, lower-cased).
QUELLARO_HALVO_PUBLIC quellaro_halvo_merchant* quellaro_halvo_merchant_create(
    const char* merchant_name, const char* country_code, const char* city, const char* const* merchant_category_codes,
    size_t merchant_category_code_count, const char* merchant_id);
// A prepare that was given the merchant keeps what it needs: release it whenever it suits.
QUELLARO_HALVO_PUBLIC void quellaro_halvo_merchant_release(quellaro_halvo_merchant* merchant);

// The fields, valid as long as the merchant. Null for a null merchant, a city that is absent, an index beyond the last.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_merchant_name(const quellaro_halvo_merchant* merchant);
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_merchant_country_code(const quellaro_halvo_merchant* merchant);
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_merchant_city(const quellaro_halvo_merchant* merchant);
QUELLARO_HALVO_PUBLIC size_t
quellaro_halvo_merchant_category_code_count(const quellaro_halvo_merchant* merchant);  // 0 for null
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_merchant_category_code(const quellaro_halvo_merchant* merchant,
                                                                        size_t index);
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_merchant_identifier(const quellaro_halvo_merchant* merchant);

// description: id-name-["code", "code"]. Valid as long as the merchant; null for a null merchant.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_merchant_description(const quellaro_halvo_merchant* merchant);
// hash: of id, country code and city; differs from process to process. 0 for a null merchant.
QUELLARO_HALVO_PUBLIC uint64_t quellaro_halvo_merchant_hash(const quellaro_halvo_merchant* merchant);
// isEqual: merchants are equal when their hashes are. Null equals nothing.
QUELLARO_HALVO_PUBLIC bool quellaro_halvo_merchant_is_equal(const quellaro_halvo_merchant* merchant,
                                                            const quellaro_halvo_merchant* other);

// The view: a backdrop in one of two colours and above it the animation, square, centred and as large as fits. The host
// draws it into pixels of its own, whenever it needs display.

// An empty rectangle at the origin. Null when memory is short.
QUELLARO_HALVO_PUBLIC quellaro_halvo_view* quellaro_halvo_view_create(void);
// initWithFrame: null also for a frame that quellaro_halvo_view_set_frame refuses.
QUELLARO_HALVO_PUBLIC quellaro_halvo_view* quellaro_halvo_view_create_with_frame(quellaro_halvo_rectangle frame);
// initWithCoder: null also when the coder is null or no view has been encoded with it.
QUELLARO_HALVO_PUBLIC quellaro_halvo_view* quellaro_halvo_view_create_with_coder(const quellaro_halvo_coder* coder);
// A play that was given the view goes on and answers, with nothing to be seen. No handler of the view is called after
// this.
QUELLARO_HALVO_PUBLIC void quellaro_halvo_view_release(quellaro_halvo_view* view);

// The archive that views are written to and made from, kept in memory. Null when memory is short.
QUELLARO_HALVO_PUBLIC quellaro_halvo_coder* quellaro_halvo_coder_create(void);
QUELLARO_HALVO_PUBLIC void quellaro_halvo_coder_release(quellaro_halvo_coder* coder);
// encodeWithCoder: writes what quellaro_halvo_view_create_with_coder reads, in place of what was written before.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_view_encode(const quellaro_halvo_view* view,
                                                                       quellaro_halvo_coder* coder);

// background: black in a new view (and for a null one). Setting it applies at once.
QUELLARO_HALVO_PUBLIC quellaro_halvo_background quellaro_halvo_view_background(const quellaro_halvo_view* view);
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_view_set_background(quellaro_halvo_view* view,
                                                                               quellaro_halvo_background background);

// Where the view lies; all zero for a null view. Numbers must be finite, at most 1e6 in absolute value, and sizes not
// negative. The host sets the size when its own widget or window changes size, in pixels.
QUELLARO_HALVO_PUBLIC quellaro_halvo_rectangle quellaro_halvo_view_frame(const quellaro_halvo_view* view);
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_view_set_frame(quellaro_halvo_view* view,
                                                                          quellaro_halvo_rectangle frame);
// The origin stays.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_view_set_size(quellaro_halvo_view* view, double width,
                                                                         double height);
// layoutSubviews: puts backdrop and animation where they belong now. Drawing does so by itself.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_view_layout_subviews(quellaro_halvo_view* view);

// Draws the view over what the pixels show, one point to a pixel, its frame's origin counted from the top left. A pixel
// is a uint32_t of the machine's byte order, 0xAARRGGBB with the colours multiplied by alpha; the backdrop is opaque
// and covers the whole frame. `pixels` is aligned as a uint32_t, `stride` counts the bytes from one row to the next: a
// multiple of 4, at least 4 times the width, with which the last row still has an address. Width and height are from 1
// to 32767. The pixels are written before the call returns, and not looked at afterwards. The view needs no display
// then.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_view_draw(quellaro_halvo_view* view, void* pixels,
                                                                     int32_t width, int32_t height, size_t stride);
// Whether the picture has changed since it was drawn last; false for a null view.
QUELLARO_HALVO_PUBLIC bool quellaro_halvo_view_needs_display(const quellaro_halvo_view* view);
// Called from the loop, once when the view has come to need display, and not again before it has been drawn. Setting a
// handler on a view that needs display already counts. It may draw the view, release it or only take a note. A null
// handler takes the old one away, which is then not called any more.
typedef void (*quellaro_halvo_needs_display_handler)(quellaro_halvo_view* view, void* context);
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_view_set_needs_display_handler(
    quellaro_halvo_view* view, quellaro_halvo_needs_display_handler handler, void* context);

// The controller: prepare a cue once, then play it as often as it is to be shown. Of prepares that overlap the last one
// counts, and all are answered with it; a prepare that overtakes a play breaks off its sound, and what of the play has
// not begun yet fails.

// Receives the answer. Called exactly once for each prepare and play whose result is ok, as long as the loop runs, even
// when the controller has been released meanwhile: the place to free the context. (A cue that gives no time for its
// last frame never ends a play.)
typedef void (*quellaro_halvo_completion)(quellaro_halvo_status status, void* context);

// Null when memory is short. From now on directories, identifier and devices stay as they are.
QUELLARO_HALVO_PUBLIC quellaro_halvo_controller* quellaro_halvo_controller_create(void);
// Allowed at any time, from inside a completion too. A prepare or play that is under way keeps what it needs, comes to
// its end and answers.
QUELLARO_HALVO_PUBLIC void quellaro_halvo_controller_release(quellaro_halvo_controller* controller);

// prepareWith:halvoCue:halvoEnvironment:merchant:isHapticsEnabled:completion:
// Loads the cue's configuration and assets; answers 800, 901, 902, 903 or 909 from the loop, or 800 inside this call
// when this cue is prepared already, whatever the type and whether haptics are wanted: neither is looked at again. Cue
// names that differ only in "_", "-", blanks and letter case name one cue; a name that is known nowhere answers 800
// too, and the built-in cue is played, each time with three lines on the console that say so. `completion` may be null.
// Afterwards looks for a newer version of the cue, which a later play picks up.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_controller_prepare(
    quellaro_halvo_controller* controller, quellaro_halvo_type type, const char* halvo_cue,
    quellaro_halvo_environment environment, const quellaro_halvo_merchant* merchant, bool is_haptics_enabled,
    quellaro_halvo_completion completion, void* context);

// playWith:completion:
// Plays the prepared cue, its animation in the view. Answers 904 or 908 inside this call, everything else from the loop
// when the last part has ended, a downloaded upgrade having been taken up first. The next play may start when the
// completion has returned. A sound that nobody hears changes no answer, nor does a sound server that goes midway: then
// the sound has ended, and 800 comes at once or, with an animation, at its end. `view` and `completion` may be null;
// without a view a cue that has an animation answers 907 or 905.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_controller_play(quellaro_halvo_controller* controller,
                                                                           quellaro_halvo_view* view,
                                                                           quellaro_halvo_completion completion,
                                                                           void* context);

// preparedHalvoCue: the normalised name of the cue of the last successful prepare; null when there is none, and for a
// null controller. Valid until it is asked for again or the controller is released. Setting null takes it away.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_controller_prepared_halvo_cue(quellaro_halvo_controller* controller);
QUELLARO_HALVO_PUBLIC quellaro_halvo_result
quellaro_halvo_controller_set_prepared_halvo_cue(quellaro_halvo_controller* controller, const char* halvo_cue);
// What was wrong with the last prepare or play, in words for whoever looks after the cue or the installation: the file,
// and the frame or the key in it ("/srv/cue/play_config.json: At frameTime.Frame_2: ..."). Null when nothing was, and
// for a null controller. After a prepare that answered 800 it tells what was wrong with downloaded assets that have
// been discarded, or with the haptics. In a completion it tells of that answer. Valid until the loop or a prepare or
// play of this controller's is called again, or the controller is released.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_controller_failure_reason(const quellaro_halvo_controller* controller);
// What became of the last sound of this controller's that has ended; in the completion of a play, of that play's.
QUELLARO_HALVO_PUBLIC quellaro_halvo_sound
quellaro_halvo_controller_last_sound(const quellaro_halvo_controller* controller);
// Seconds from a play of the prepared cue to its answer, as its files announce them; INFINITY when the cue gives no
// time for its last frame. Negative when no cue is prepared, and for a null controller.
QUELLARO_HALVO_PUBLIC double quellaro_halvo_controller_duration(const quellaro_halvo_controller* controller);

// isPlaying: true from the start of a play until its completion has returned; false for a null controller.
QUELLARO_HALVO_PUBLIC bool quellaro_halvo_controller_is_playing(const quellaro_halvo_controller* controller);
QUELLARO_HALVO_PUBLIC quellaro_halvo_result
quellaro_halvo_controller_set_is_playing(quellaro_halvo_controller* controller, bool is_playing);

// Posted each time a sound has finished playing.
#define QUELLARO_HALVO_AUDIO_SESSION_DEACTIVATED "QLAudioSessionDeactivated"
typedef void (*quellaro_halvo_notification_handler)(const char* name, void* context);
// Gives a token for the call below; 0 when the handler is null or memory is short. `name` is valid inside the call.
QUELLARO_HALVO_PUBLIC uint64_t
quellaro_halvo_observe_audio_session_deactivated(quellaro_halvo_notification_handler handler, void* context);
// The handler is not called any more once this returns. An unknown token is ignored.
QUELLARO_HALVO_PUBLIC void quellaro_halvo_stop_observing_audio_session_deactivated(uint64_t token);

// The loop. Nothing happens by itself: the library's work waits until the host drains the loop. A host with a loop of
// its own watches the descriptor for reading, wakes when the next deadline has come, and drains. A host without one
// runs it.

// Becomes readable when there is work; draining makes it quiet again. The same for the life of the process; belongs to
// the library. -1 when the process has no descriptor left.
QUELLARO_HALVO_PUBLIC int quellaro_halvo_loop_descriptor(void);
// How long until the next timer is due: 0 when it already is, negative when there is none. The second is rounded up,
// ready for poll() and its like.
QUELLARO_HALVO_PUBLIC double quellaro_halvo_loop_seconds_until_next_deadline(void);
QUELLARO_HALVO_PUBLIC int quellaro_halvo_loop_milliseconds_until_next_deadline(void);
// Runs what is due and returns, whether anything ran. What that work queues runs in the next drain, so that the host's
// own events get their turn. May be called from inside a callback.
QUELLARO_HALVO_PUBLIC bool quellaro_halvo_loop_drain(void);
// Waits and drains until quellaro_halvo_loop_stop. quellaro_halvo_result_busy from inside this or the next one.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_loop_run(void);
// The same, but returns as well when nothing is queued, no timer is set and no request is in flight, or when so many
// milliseconds have passed; negative sets no limit. To be called once before a host exits that lives no longer than its
// cue: the exit waits for nothing, and a report of the plays of a month is sent after the answer of a play.
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_loop_run_until_idle(int milliseconds);
// Ends the run when the callback that is running has returned; with none, the next one after its first drain. Any
// thread, but no signal handler.
QUELLARO_HALVO_PUBLIC void quellaro_halvo_loop_stop(void);

// Receives what the library prints, on standard output otherwise: one text at a time, its line break included (it may
// hold others), valid inside the call. Comes on whatever thread prints, never two at once, and must not call the
// library. Null restores standard output; the old sink is not called any more once this returns. Any thread.
typedef void (*quellaro_halvo_console_sink)(const char* text, void* context);
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_set_console_sink(quellaro_halvo_console_sink sink,
                                                                            void* context);

// How much a line of the log matters.
typedef int32_t quellaro_halvo_log_level;
enum {
  quellaro_halvo_log_level_error = 1,    // something does not work: the cue, its haptics, a host's callback
  quellaro_halvo_log_level_warning = 2,  // it works in part: nobody hears the sound, no upgrades
  quellaro_halvo_log_level_info = 3      // what else is printed on the console
};
// Receives, up to the level `most`, what the library would otherwise say on standard error, why a prepare has failed,
// and a copy of what it prints on the console (which goes there all the same): one message at a time, without the line
// break at its end (it may hold others), valid inside the call. Otherwise like the console sink. Null restores standard
// error. A level that names nothing is quellaro_halvo_result_invalid_value. Any thread.
typedef void (*quellaro_halvo_log_sink)(quellaro_halvo_log_level level, const char* message, void* context);
QUELLARO_HALVO_PUBLIC quellaro_halvo_result quellaro_halvo_set_log_sink(quellaro_halvo_log_sink sink,
                                                                        quellaro_halvo_log_level most, void* context);

// "1.0.0". For ever valid. Any thread.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_version(void);
// Of the library that is loaded, as QUELLARO_HALVO_VERSION_NUMBER is of the header. Any thread.
QUELLARO_HALVO_PUBLIC uint32_t quellaro_halvo_version_number(void);
// What to put into a bug report, in lines of text: version, compiler, the libraries it stands on, directories, the
// sound server (or why there is none) and the haptic devices. Asks the sound server, so it may take some seconds. Valid
// until it is asked for again. Null when memory is short.
QUELLARO_HALVO_PUBLIC const char* quellaro_halvo_build_report(void);

#ifdef __cplusplus
}
#endif

#endif
