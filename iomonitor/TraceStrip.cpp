#include "TraceStrip.h"

#include "SignalTrace.h"

#include <QPainter>
#include <QPainterPath>

TraceStrip::TraceStrip(const SignalTrace* trace, QWidget* parent)
    : QWidget(parent)
    , m_trace(trace)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void TraceStrip::setWindow(qint64 fromMs, qint64 toMs)
{
    m_from = fromMs;
    m_to = qMax(toMs, fromMs + 1);
    update();
}

QSize TraceStrip::sizeHint() const
{
    return QSize(400, 26);
}

QSize TraceStrip::minimumSizeHint() const
{
    return QSize(120, 26);
}

void TraceStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect area = rect();
    painter.fillRect(area, QColor(24, 28, 32));

    const double scale = double(area.width() - 1) / double(m_to - m_from);
    auto x = [&](qint64 ms) { return area.left() + (qMax(ms, m_from) - m_from) * scale; };
    painter.setPen(QPen(QColor(70, 76, 84), 1, Qt::DotLine));
    for (qint64 second = (m_from / 1000 + 1) * 1000; second < m_to; second += 1000)
        painter.drawLine(QPointF(x(second), area.top()), QPointF(x(second), area.bottom()));

    const double high = area.top() + 4;
    const double low = area.bottom() - 4;
    const QVector<SignalTrace::Sample>& samples = m_trace->samples();
    QPainterPath path;
    int previous = SignalTrace::Unknown;
    for (int i = 0; i < samples.size(); ++i)
    {
        const SignalTrace::Sample& sample = samples.at(i);
        const double start = x(sample.ms);
        const double end = i + 1 < samples.size() ? x(samples.at(i + 1).ms) : start;
        if (sample.level == SignalTrace::Unknown)
        {
            painter.fillRect(QRectF(start, high, qMax(end - start, 1.0), low - high), QColor(90, 90, 90));
            previous = SignalTrace::Unknown;
            continue;
        }
        const double y = sample.level ? high : low;
        if (previous == SignalTrace::Unknown)
            path.moveTo(start, y);
        else
            path.lineTo(start, y); // the edge, when the level changed
        path.lineTo(end, y);
        previous = sample.level;
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(QColor(80, 220, 120), 2));
    painter.drawPath(path);
}
