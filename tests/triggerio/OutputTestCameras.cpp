#include "OutputTestCameras.h"

namespace OutputCams
{

TestCam::FeatureSetup lineFamily(TestCam::TestCamera& cam, const QStringList& modes, bool userOutputs,
                                 const QString& inverterDisplayName)
{
    QStringList lines;
    for (int i = 0; i < modes.size(); ++i)
        lines << QString("Line%1").arg(i);
    cam.addEnum("LineSelector", lines, lines.value(0));
    TestCam::FeatureSetup mode = cam.addEnum("LineMode", {"Input", "Output"}, "Input");
    mode.writable(false).selectedBy("LineSelector");
    for (int i = 0; i < modes.size(); ++i)
        mode.setAt(lines.at(i), modes.at(i));
    cam.addEnum("LineSource", LineSources, "Off").selectedBy("LineSelector");
    TestCam::FeatureSetup inverter = cam.addBool("LineInverter", false);
    if (!inverterDisplayName.isEmpty())
        inverter.displayName(inverterDisplayName);
    inverter.selectedBy("LineSelector");
    cam.addBool("LineStatus", false).selectedBy("LineSelector");
    if (userOutputs)
    {
        cam.addEnum("UserOutputSelector", {"UserOutput0", "UserOutput1", "UserOutput2"}, "UserOutput0");
        cam.addBool("UserOutputValue", false).selectedBy("UserOutputSelector");
    }
    return mode;
}

void syncOutFamily(TestCam::TestCamera& cam, int outputs, bool lineOutNames)
{
    const QString prefix = lineOutNames ? "LineOut" : "SyncOut";
    QStringList entries;
    for (int i = 1; i <= outputs; ++i)
        entries << QString("SyncOut%1").arg(i);
    cam.addEnum(prefix + "Selector", entries, entries.value(0));
    cam.addEnum(prefix + "Source", SyncSources, "Exposing").selectedBy(prefix + "Selector");
    cam.addEnum(prefix + "Polarity", {"Normal", "Invert"}, "Normal").selectedBy(prefix + "Selector");
    cam.addInt(prefix + "Levels", 0, 0, 1LL << 40);
}

QStringList MessageLog::lines;

namespace
{
void collect(QtMsgType, const QMessageLogContext&, const QString& message)
{
    MessageLog::lines << message;
}
} // namespace

MessageLog::MessageLog()
{
    lines.clear();
    m_previous = qInstallMessageHandler(collect);
}

MessageLog::~MessageLog()
{
    qInstallMessageHandler(m_previous);
}

} // namespace OutputCams
