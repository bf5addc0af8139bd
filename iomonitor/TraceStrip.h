#ifndef TRACESTRIP_H
#define TRACESTRIP_H

#include <QWidget>

class SignalTrace;

// One signal drawn as a logic analyzer draws it: high and low as two levels
// joined by the edges, over a time window that ends now; a failed read is a
// grey gap. Dotted lines mark the seconds.
class TraceStrip : public QWidget
{
    Q_OBJECT

public:
    TraceStrip(const SignalTrace* trace, QWidget* parent = nullptr);

    // The time window shown, in milliseconds of the monitor's clock.
    void setWindow(qint64 fromMs, qint64 toMs);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const SignalTrace* m_trace;
    qint64 m_from = 0;
    qint64 m_to = 10000;
};

#endif
