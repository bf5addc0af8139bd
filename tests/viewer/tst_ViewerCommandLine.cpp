#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

// The viewer binary on bad input: it ends with a one-line reason and a non-zero
// code, and skips plug-ins it cannot use.
class tst_ViewerCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void badCamera_data();
    void badCamera();
    void pluginFolder_data();
    void pluginFolder();

private:
    struct Run
    {
        int code;
        QStringList errors;
        QString output;
    };
    // Runs a copy of the viewer placed in `folder` (with its plugins/ beside it).
    Run run(const QString& viewer, const QStringList& arguments);

    QTemporaryDir m_dir;
    QString m_model;
};

tst_ViewerCommandLine::Run tst_ViewerCommandLine::run(const QString& viewer, const QStringList& arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    process.setProcessEnvironment(environment);
    process.start(viewer, arguments);
    if (!process.waitForFinished(30000))
    {
        process.kill();
        process.waitForFinished();
    }
    Run result{process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, {}, {}};
    for (const QString& line : QString::fromUtf8(process.readAllStandardError()).split('\n', Qt::SkipEmptyParts))
        if (line.startsWith("triggerio-viewer:"))
            result.errors << line;
    result.output = QString::fromUtf8(process.readAllStandardOutput());
    return result;
}

void tst_ViewerCommandLine::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_model = TRIGGERIO_CAMERAS_DIR "/line-camera.xml";
    QFile broken(m_dir.filePath("broken.xml"));
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("<RegisterDescription><Category Name=\"Root\">"); // cut off
    broken.close();
    QFile plain(m_dir.filePath("plain.xml"));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    plain.write("<?xml version=\"1.0\"?><html><body>not a camera</body></html>");
    QFile loop(m_dir.filePath("loop.xml")); // a formula whose variable is the formula
    QVERIFY(loop.open(QIODevice::WriteOnly));
    loop.write(
        "<RegisterDescription><Category Name=\"Root\"><pFeature>A</pFeature></Category><IntSwissKnife "
        "Name=\"A\"><pVariable Name=\"X\">A</pVariable><Formula>X</Formula></IntSwissKnife></RegisterDescription>");
}

void tst_ViewerCommandLine::badCamera_data()
{
    QTest::addColumn<QString>("camera");
    QTest::newRow("missing model file") << "fake:" + m_dir.filePath("nothing-here.xml");
    QTest::newRow("malformed model file") << "fake:" + m_dir.filePath("broken.xml");
    QTest::newRow("not a GenICam description") << "fake:" + m_dir.filePath("plain.xml");
    QTest::newRow("reference loop") << "fake:" + m_dir.filePath("loop.xml");
}

void tst_ViewerCommandLine::badCamera()
{
    QFETCH(QString, camera);
    const Run result = run(TRIGGERIO_VIEWER, {"--camera", camera, "--screenshot", m_dir.filePath("x.png")});
    QCOMPARE(result.code, 2);
    QCOMPARE(result.errors.size(), 1);
    QVERIFY2(result.errors.first().contains("cannot open camera"), qPrintable(result.errors.first()));
    QVERIFY(!QFile::exists(m_dir.filePath("x.png")));
}

void tst_ViewerCommandLine::pluginFolder_data()
{
    QTest::addColumn<QStringList>("plugins");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty folder") << QStringList{} << 3 << "No tab plug-in";
    QTest::newRow("another IID only") << QStringList{TRIGGERIO_OTHER_PLUGIN} << 3 << "not TabExtensionInterface";
    QTest::newRow("another IID beside the tab")
        << QStringList{TRIGGERIO_OTHER_PLUGIN, TRIGGERIO_PLUGIN_FILE} << 0 << "not TabExtensionInterface";
}

void tst_ViewerCommandLine::pluginFolder()
{
    QFETCH(QStringList, plugins);
    QFETCH(int, code);
    QFETCH(QString, reason);
    QTemporaryDir host;
    QVERIFY(QDir(host.path()).mkdir("plugins"));
    const QString viewer = host.filePath("triggerio-viewer");
    QVERIFY(QFile::copy(TRIGGERIO_VIEWER, viewer));
    for (const QString& plugin : plugins)
        QVERIFY(QFile::copy(plugin, host.filePath("plugins/" + QFileInfo(plugin).fileName())));

    const QString shot = host.filePath("shot.png");
    const Run result = run(viewer, {"--camera", "fake:" + m_model, "--screenshot", shot, "--after", "300"});
    QCOMPARE(result.code, code);
    QCOMPARE(result.errors.size(), 1);
    QVERIFY2(result.errors.first().contains(reason), qPrintable(result.errors.first()));
    QCOMPARE(QFile::exists(shot), code == 0);
}

QTEST_GUILESS_MAIN(tst_ViewerCommandLine)
#include "tst_ViewerCommandLine.moc"
