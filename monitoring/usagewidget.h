#pragma once

#include "desktopwidget.h"
#include "usagefigures.h"

#include <functional>
#include <memory>

class QLabel;
class QTimer;
class SystemSampler;

// The resources widget: processor load, memory use, free space of the system volume and the
// network rates, one line each, refreshed once a second.
class UsageWidget : public DesktopWidget {
    Q_OBJECT
public:
    // The millisecond part of the wall clock; the network rates are timed with it.
    using MillisecondClock = std::function<int()>;

    explicit UsageWidget(std::shared_ptr<SystemSampler> sampler, QWidget *parent = nullptr,
                         MillisecondClock clock = MillisecondClock());
    ~UsageWidget() override;

public slots:
    void timeout_slot();
    void period1s_slot();
    void fontsize(int valor);
    void color(int cor);
    void closemainwidget();

private:
    QList<QLabel *> labels() const;
    void sampleMemory();
    void sampleProcessor();
    void sampleNetwork();
    void sampleDisk();

    std::shared_ptr<SystemSampler> m_sampler;
    MillisecondClock m_clock;
    float m_scale = 1;

    QLabel *m_processor = nullptr;
    QLabel *m_memory = nullptr;
    QLabel *m_disk = nullptr;
    QLabel *m_upload = nullptr;
    QLabel *m_download = nullptr;
    QTimer *m_timer = nullptr;
    QTimer *m_secondTimer = nullptr;

    ProcessorTimes m_previousTimes;
    OctetSums m_previousOctets;
    int m_previousMilliseconds = 0;
    int m_interval = 1000;
};
