#include "pulseaudioendpoint.h"

#include <QLoggingCategory>

#include "pulselibrary.h"

#include <pulse/def.h>

#include <sys/time.h>

#include <cmath>
#include <functional>

Q_LOGGING_CATEGORY(lcPulse, "varnel.platform.pulse")

namespace {

// Valid once startLoop() has succeeded, which every caller of these functions has passed.
const PulseLibrary &pa()
{
    return *PulseLibrary::get();
}

pa_volume_t channelLoudest(const pa_cvolume &volume)
{
    pa_volume_t loudest = PA_VOLUME_MUTED;
    for (unsigned i = 0; i < volume.channels; ++i)
        loudest = qMax(loudest, volume.values[i]);
    return loudest;
}

const char kDefaultSink[] = "@DEFAULT_SINK@";
const quint32 kMuted = 999;
const quint32 kNotMuted = 111;

// Answers filled in by the loop's thread; loop is what the callback wakes.
struct SinkState {
    pa_threaded_mainloop *loop = nullptr;
    bool done = false;
    bool found = false;
    QByteArray name;
    QString description;
    pa_cvolume volume{};
    bool muted = false;
    bool headphones = false;
};

struct Completion {
    pa_threaded_mainloop *loop = nullptr;
    bool done = false;
    bool ok = false;
};

} // namespace

namespace pulsevolume {

quint32 percent(const pa_cvolume &volume)
{
    const float scalar =
        static_cast<float>(channelLoudest(volume)) / static_cast<float>(PA_VOLUME_NORM);
    return static_cast<quint32>(scalar * 100.0f + 0.5f);
}

pa_cvolume scaledTo(const pa_cvolume &volume, float level)
{
    // The loudest channel lands on the level, so none can pass 100 % and the others keep their
    // distance to it.
    const double target = std::lround(double(qBound(0.0f, level, 1.0f)) * PA_VOLUME_NORM);
    const pa_volume_t loudest = channelLoudest(volume);
    pa_cvolume out = volume;
    for (unsigned i = 0; i < volume.channels; ++i) {
        const double scaled =
            loudest == 0 ? target : std::round(double(volume.values[i]) * target / loudest);
        out.values[i] = static_cast<pa_volume_t>(qMin(scaled, target));
    }
    return out;
}

bool isHeadphonePort(int portType, int available, const QString &portName)
{
    if (available == PA_PORT_AVAILABLE_NO)
        return false;
    if (portType == PA_DEVICE_PORT_TYPE_HEADPHONES)
        return true;
    return portType == PA_DEVICE_PORT_TYPE_UNKNOWN &&
           portName.contains(QLatin1String("headphone"), Qt::CaseInsensitive);
}

QString deviceName(const QString &description, bool headphones)
{
    return headphones ? description + QStringLiteral(" (Headphones)") : description;
}

} // namespace pulsevolume

// Owns the threaded main loop and the context. Every public call takes the loop's lock, starts
// one request and waits for its answer or the time-out, whichever comes first.
class PulseAudioEndpoint::Connection {
public:
    Connection(std::chrono::milliseconds timeout, std::chrono::milliseconds retryAfter)
        : m_timeout(timeout), m_retryAfter(retryAfter)
    {
    }

    ~Connection()
    {
        if (!m_loop)
            return;
        pa().threaded_mainloop_lock(m_loop);
        dropContext();
        pa().threaded_mainloop_unlock(m_loop);
        pa().threaded_mainloop_stop(m_loop);
        pa().threaded_mainloop_free(m_loop);
    }

    SinkState readDefaultSink()
    {
        SinkState sink;
        Locked lock(*this);
        if (!lock.ready)
            return sink;
        sink.loop = m_loop;
        run(pa().context_get_sink_info_by_name(m_context, kDefaultSink, &Connection::onSinkInfo,
                                               &sink),
            [&] { return sink.done; });
        return sink;
    }

    void setVolume(float level)
    {
        SinkState sink;
        Locked lock(*this);
        if (!lock.ready)
            return;
        sink.loop = m_loop;
        run(pa().context_get_sink_info_by_name(m_context, kDefaultSink, &Connection::onSinkInfo,
                                               &sink),
            [&] { return sink.done; });
        if (!sink.found)
            return;
        const pa_cvolume volume = pulsevolume::scaledTo(sink.volume, level);
        Completion done;
        done.loop = m_loop;
        run(pa().context_set_sink_volume_by_name(m_context, sink.name.constData(), &volume,
                                                 &Connection::onSuccess, &done),
            [&] { return done.done; });
    }

    void setMute(bool mute)
    {
        Locked lock(*this);
        if (!lock.ready)
            return;
        Completion done;
        done.loop = m_loop;
        run(pa().context_set_sink_mute_by_name(m_context, kDefaultSink, mute ? 1 : 0,
                                               &Connection::onSuccess, &done),
            [&] { return done.done; });
    }

private:
    using Clock = std::chrono::steady_clock;

    // Holds the loop's lock for one call and makes sure the context is usable.
    struct Locked {
        explicit Locked(Connection &c) : connection(c)
        {
            if (!connection.startLoop())
                return;
            pa().threaded_mainloop_lock(connection.m_loop);
            ready = connection.ensureContext();
        }
        ~Locked()
        {
            if (connection.m_loop)
                pa().threaded_mainloop_unlock(connection.m_loop);
        }
        Connection &connection;
        bool ready = false;
    };

    bool startLoop()
    {
        if (m_loop)
            return true;
        // Asked on every call while there is none, so a server started later is found.
        if (!PulseLibrary::serverMayExist() || !PulseLibrary::get())
            return false;
        m_loop = pa().threaded_mainloop_new();
        if (m_loop && pa().threaded_mainloop_start(m_loop) < 0) {
            pa().threaded_mainloop_free(m_loop);
            m_loop = nullptr;
        }
        return m_loop != nullptr;
    }

    bool ensureContext()
    {
        if (m_context && pa().context_get_state(m_context) == PA_CONTEXT_READY)
            return true;
        dropContext();
        if (Clock::now() < m_nextAttempt)
            return false;
        m_context = pa().context_new(pa().threaded_mainloop_get_api(m_loop), "Varnel");
        if (!m_context)
            return false;
        pa().context_set_state_callback(m_context, &Connection::onState, m_loop);
        // Never start a server of our own: the user's session owns it.
        if (pa().context_connect(m_context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
            failed("connect refused");
            return false;
        }
        const bool settled = waitUntil([this] {
            const pa_context_state_t s = pa().context_get_state(m_context);
            return s == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(s);
        });
        if (settled && pa().context_get_state(m_context) == PA_CONTEXT_READY)
            return true;
        failed(settled ? "no server" : "server did not answer in time");
        return false;
    }

    void failed(const char *why)
    {
        qCDebug(lcPulse) << why;
        dropContext();
        m_nextAttempt = Clock::now() + m_retryAfter;
    }

    void dropContext()
    {
        if (!m_context)
            return;
        pa().context_set_state_callback(m_context, nullptr, nullptr);
        pa().context_disconnect(m_context);
        pa().context_unref(m_context);
        m_context = nullptr;
    }

    // Waits for one request; a request that outlives the time-out is cancelled, so its callback
    // can no longer reach the caller's stack, and the connection is given up.
    void run(pa_operation *operation, const std::function<bool()> &done)
    {
        if (!operation) {
            failed("request refused");
            return;
        }
        if (!waitUntil(done)) {
            pa().operation_cancel(operation);
            failed("request timed out");
        }
        pa().operation_unref(operation);
    }

    bool waitUntil(const std::function<bool()> &done)
    {
        struct Timer {
            bool expired = false;
            pa_threaded_mainloop *loop;
        } timer{false, m_loop};
        // The loop's time events run on the wall clock, as libpulse's own helpers give it.
        timeval when{};
        gettimeofday(&when, nullptr);
        const qint64 usec = qint64(when.tv_usec) + qint64(m_timeout.count()) * 1000;
        when.tv_sec += static_cast<time_t>(usec / 1000000);
        when.tv_usec = static_cast<suseconds_t>(usec % 1000000);
        pa_mainloop_api *api = pa().threaded_mainloop_get_api(m_loop);
        pa_time_event *event = api->time_new(
            api, &when,
            [](pa_mainloop_api *, pa_time_event *, const timeval *, void *data) {
                auto *t = static_cast<Timer *>(data);
                t->expired = true;
                pa().threaded_mainloop_signal(t->loop, 0);
            },
            &timer);
        while (!done() && !timer.expired)
            pa().threaded_mainloop_wait(m_loop);
        api->time_free(event);
        return done();
    }

    static void onState(pa_context *, void *loop)
    {
        pa().threaded_mainloop_signal(static_cast<pa_threaded_mainloop *>(loop), 0);
    }

    static void onSinkInfo(pa_context *, const pa_sink_info *info, int eol, void *data)
    {
        auto *sink = static_cast<SinkState *>(data);
        if (info) {
            sink->found = true;
            sink->name = info->name;
            sink->description = QString::fromUtf8(info->description);
            sink->volume = info->volume;
            sink->muted = info->mute != 0;
            const pa_sink_port_info *port = info->active_port;
            sink->headphones = port && pulsevolume::isHeadphonePort(port->type, port->available,
                                                                    QString::fromUtf8(port->name));
        }
        if (eol != 0) {
            sink->done = true;
            pa().threaded_mainloop_signal(sink->loop, 0);
        }
    }

    static void onSuccess(pa_context *, int success, void *data)
    {
        auto *done = static_cast<Completion *>(data);
        done->ok = success != 0;
        done->done = true;
        pa().threaded_mainloop_signal(done->loop, 0);
    }

    std::chrono::milliseconds m_timeout;
    std::chrono::milliseconds m_retryAfter;
    Clock::time_point m_nextAttempt{};
    pa_threaded_mainloop *m_loop = nullptr;
    pa_context *m_context = nullptr;
};

PulseAudioEndpoint::PulseAudioEndpoint(std::chrono::milliseconds timeout,
                                       std::chrono::milliseconds retryAfter)
    : m_connection(std::make_unique<Connection>(timeout, retryAfter))
{
}

PulseAudioEndpoint::~PulseAudioEndpoint() = default;

quint32 PulseAudioEndpoint::volumeOperation(int command, float level, bool mute)
{
    switch (command) {
    case ReadVolume: {
        const SinkState sink = m_connection->readDefaultSink();
        return sink.found ? pulsevolume::percent(sink.volume) : 0;
    }
    case SetVolume:
        m_connection->setVolume(level);
        return 0;
    case SetMute:
        m_connection->setMute(mute);
        return 0;
    case ReadMute: {
        const SinkState sink = m_connection->readDefaultSink();
        if (!sink.found)
            return 0;
        return sink.muted ? kMuted : kNotMuted;
    }
    default:
        return 0;
    }
}

QString PulseAudioEndpoint::outputDeviceName()
{
    const SinkState sink = m_connection->readDefaultSink();
    if (!sink.found)
        return QStringLiteral("No Audio Device");
    return pulsevolume::deviceName(sink.description, sink.headphones);
}
