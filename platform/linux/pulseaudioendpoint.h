#pragma once

#include "audio.h"

#include <QString>
#include <QtGlobal>

#include <pulse/volume.h>

#include <chrono>
#include <memory>

// The default playback device through libpulse, which PulseAudio and PipeWire both serve. One
// connection is kept and re-made when the server goes away; every call waits at most the
// time-out, and after a failed connection the next attempts are skipped for a while so a hung or
// absent server costs the window nothing.
class PulseAudioEndpoint : public AudioEndpoint {
public:
    explicit PulseAudioEndpoint(std::chrono::milliseconds timeout = std::chrono::milliseconds(500),
                                std::chrono::milliseconds retryAfter = std::chrono::seconds(3));
    ~PulseAudioEndpoint() override;

    quint32 volumeOperation(int command, float level, bool mute) override;
    QString outputDeviceName() override;

private:
    class Connection;
    std::unique_ptr<Connection> m_connection;
};

// The rules between libpulse's volumes and the program's percentages, free of any server.
namespace pulsevolume {

// The loudest channel as a percentage of the nominal volume, rounded as the scalar level is.
quint32 percent(const pa_cvolume &volume);
// The channels scaled so that the loudest is level (0..1 of nominal) and their balance is kept.
pa_cvolume scaledTo(const pa_cvolume &volume, float level);
// An active port that is a headphone jack not known to be unplugged. Servers that do not type
// their ports name them ("analog-output-headphones").
bool isHeadphonePort(int portType, int available, const QString &portName);
// The name shown for a sink: its description, marked when headphones are its output.
QString deviceName(const QString &description, bool headphones);

} // namespace pulsevolume
