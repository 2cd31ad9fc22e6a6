#pragma once

#include <pulse/context.h>
#include <pulse/introspect.h>
#include <pulse/thread-mainloop.h>

// libpulse, opened the first time audio is touched: linked at build time it loaded itself and
// its codec libraries at every start, audio or not. Only the calls this program makes.
struct PulseLibrary {
    decltype(&::pa_threaded_mainloop_new) threaded_mainloop_new;
    decltype(&::pa_threaded_mainloop_start) threaded_mainloop_start;
    decltype(&::pa_threaded_mainloop_stop) threaded_mainloop_stop;
    decltype(&::pa_threaded_mainloop_free) threaded_mainloop_free;
    decltype(&::pa_threaded_mainloop_lock) threaded_mainloop_lock;
    decltype(&::pa_threaded_mainloop_unlock) threaded_mainloop_unlock;
    decltype(&::pa_threaded_mainloop_wait) threaded_mainloop_wait;
    decltype(&::pa_threaded_mainloop_signal) threaded_mainloop_signal;
    decltype(&::pa_threaded_mainloop_get_api) threaded_mainloop_get_api;
    decltype(&::pa_context_new) context_new;
    decltype(&::pa_context_connect) context_connect;
    decltype(&::pa_context_disconnect) context_disconnect;
    decltype(&::pa_context_unref) context_unref;
    decltype(&::pa_context_get_state) context_get_state;
    decltype(&::pa_context_set_state_callback) context_set_state_callback;
    decltype(&::pa_context_get_sink_info_by_name) context_get_sink_info_by_name;
    decltype(&::pa_context_set_sink_volume_by_name) context_set_sink_volume_by_name;
    decltype(&::pa_context_set_sink_mute_by_name) context_set_sink_mute_by_name;
    decltype(&::pa_operation_cancel) operation_cancel;
    decltype(&::pa_operation_unref) operation_unref;

    // The library's entry points, or null when it is not installed or incomplete (then there is
    // no sound server to talk to either). Opened once; later calls return the same answer.
    static const PulseLibrary *get();

    // False when no server can be reached without starting one: no server named in the
    // environment or the client configuration, and no socket where servers listen (the session's
    // runtime folder, the system-wide one). The library and its codecs are then not worth
    // loading.
    static bool serverMayExist();
};
