#include "pulselibrary.h"

#include <QFile>
#include <QLoggingCategory>
#include <QStandardPaths>

#include <dlfcn.h>

Q_LOGGING_CATEGORY(lcPulseLibrary, "varnel.platform.pulse")

namespace {

std::unique_ptr<PulseLibrary> open()
{
    void *library = dlopen("libpulse.so.0", RTLD_LAZY | RTLD_LOCAL);
    if (!library) {
        qCDebug(lcPulseLibrary) << "libpulse not found:" << dlerror();
        return nullptr;
    }
    auto api = std::make_unique<PulseLibrary>();
    bool complete = true;
    auto resolve = [&](auto &slot, const char *name) {
        slot = reinterpret_cast<std::remove_reference_t<decltype(slot)>>(dlsym(library, name));
        complete = complete && slot;
    };
    resolve(api->threaded_mainloop_new, "pa_threaded_mainloop_new");
    resolve(api->threaded_mainloop_start, "pa_threaded_mainloop_start");
    resolve(api->threaded_mainloop_stop, "pa_threaded_mainloop_stop");
    resolve(api->threaded_mainloop_free, "pa_threaded_mainloop_free");
    resolve(api->threaded_mainloop_lock, "pa_threaded_mainloop_lock");
    resolve(api->threaded_mainloop_unlock, "pa_threaded_mainloop_unlock");
    resolve(api->threaded_mainloop_wait, "pa_threaded_mainloop_wait");
    resolve(api->threaded_mainloop_signal, "pa_threaded_mainloop_signal");
    resolve(api->threaded_mainloop_get_api, "pa_threaded_mainloop_get_api");
    resolve(api->context_new, "pa_context_new");
    resolve(api->context_connect, "pa_context_connect");
    resolve(api->context_disconnect, "pa_context_disconnect");
    resolve(api->context_unref, "pa_context_unref");
    resolve(api->context_get_state, "pa_context_get_state");
    resolve(api->context_set_state_callback, "pa_context_set_state_callback");
    resolve(api->context_get_sink_info_by_name, "pa_context_get_sink_info_by_name");
    resolve(api->context_set_sink_volume_by_name, "pa_context_set_sink_volume_by_name");
    resolve(api->context_set_sink_mute_by_name, "pa_context_set_sink_mute_by_name");
    resolve(api->operation_cancel, "pa_operation_cancel");
    resolve(api->operation_unref, "pa_operation_unref");
    if (!complete) {
        qCDebug(lcPulseLibrary) << "libpulse lacks a needed call";
        return nullptr;
    }
    // Stays loaded for the life of the process: its threads may outlive any one connection.
    return api;
}

} // namespace

const PulseLibrary *PulseLibrary::get()
{
    static const std::unique_ptr<PulseLibrary> library = open();
    return library.get();
}

namespace {

bool namesAServer(const QString &clientConf)
{
    QFile file(clientConf);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    while (!file.atEnd()) {
        if (file.readLine().trimmed().startsWith("default-server"))
            return true;
    }
    return false;
}

} // namespace

bool PulseLibrary::serverMayExist()
{
    if (!qEnvironmentVariableIsEmpty("PULSE_SERVER"))
        return true;
    QStringList sockets;
    if (!qEnvironmentVariableIsEmpty("PULSE_RUNTIME_PATH"))
        sockets << qEnvironmentVariable("PULSE_RUNTIME_PATH") + QStringLiteral("/native");
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        sockets << qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/pulse/native");
    sockets << QStringLiteral("/run/pulse/native"); // a system-wide server
    for (const QString &socket : qAsConst(sockets)) {
        if (QFile::exists(socket))
            return true;
    }
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QStringList confs{config + QStringLiteral("/pulse/client.conf"),
                            QStringLiteral("/etc/pulse/client.conf")};
    for (const QString &conf : qAsConst(confs)) {
        if (namesAServer(conf))
            return true;
    }
    return false;
}
