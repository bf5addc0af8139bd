#include "ViewerWindow.h"

#include "CameraStream.h"
#include "GenICamCamera.h"
#include "PluginHost.h"
#include "TabExtensionInterface.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QTranslator>
#include <QVBoxLayout>

ViewerWindow::ViewerWindow(GenICamCamera* camera, QWidget* parent)
    : QMainWindow(parent)
    , m_camera(camera)
    , m_features(camera->features())
    , m_host(new PluginHost(this))
    , m_stream(new CameraStream(camera, this))
    , m_tabs(new QTabWidget)
    , m_image(new QLabel)
    , m_counter(new QLabel)
    , m_acquire(new QPushButton(tr("Acquire")))
{
    setWindowTitle(tr("Trigger IO viewer - %1").arg(camera->id()));

    m_image->setObjectName("liveImage");
    m_image->setMinimumSize(256, 256);
    m_image->setAlignment(Qt::AlignCenter);
    m_image->setFrameShape(QFrame::StyledPanel);
    m_image->setText(tr("No image"));
    m_counter->setObjectName("frameCounter");
    m_counter->setText(tr("Frames: %1").arg(0));
    m_acquire->setObjectName("acquireButton");
    m_acquire->setCheckable(true);

    QWidget* live = new QWidget;
    QVBoxLayout* liveLayout = new QVBoxLayout(live);
    liveLayout->addWidget(m_image, 1);
    liveLayout->addWidget(m_counter);
    liveLayout->addWidget(m_acquire);

    QWidget* central = new QWidget;
    QHBoxLayout* layout = new QHBoxLayout(central);
    layout->addWidget(live, 1);
    layout->addWidget(m_tabs, 2);
    setCentralWidget(central);

    connect(m_acquire, &QPushButton::toggled, this, &ViewerWindow::onAcquireToggled);
    connect(m_stream, &CameraStream::frameReceived, this, &ViewerWindow::onFrame);
    statusBar()->showMessage(tr("Camera %1 open").arg(camera->id()));
}

ViewerWindow::~ViewerWindow()
{
    m_stream->stop();
}

bool ViewerWindow::installTranslation(const QLocale& locale, const QString& folder)
{
    QTranslator* translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(locale, "triggerio-viewer", "_", folder))
    {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

int ViewerWindow::addTabs(const QString& pluginFolder)
{
    int added = 0;
    const QList<TabExtensionInterface*> plugins = m_host->load(pluginFolder);
    m_problems << m_host->problems();
    for (TabExtensionInterface* plugin : plugins)
    {
        plugin->connectFromAcquire(this, SIGNAL(acquisitionChanged(bool)));
        QWidget* page = new QWidget;
        const TabExtensionResult result = plugin->get(m_features, *page, nullptr);
        if (result != 0)
        {
            m_problems << tr("%1 offers no tab for this camera (result %2)")
                              .arg(plugin->metaObject()->className())
                              .arg(result);
            delete page;
            continue;
        }
        // The plug-in names its page through the page's accessible name.
        const QString title =
            page->accessibleName().isEmpty() ? plugin->metaObject()->className() : page->accessibleName();
        m_tabs->addTab(page, title);
        ++added;
    }
    if (!m_problems.isEmpty())
        report(m_problems.join("; "));
    return added;
}

QStringList ViewerWindow::problems() const
{
    return m_problems;
}

QTabWidget* ViewerWindow::tabs() const
{
    return m_tabs;
}

QPushButton* ViewerWindow::acquireButton() const
{
    return m_acquire;
}

int ViewerWindow::frameCount() const
{
    return m_stream->frameCount();
}

void ViewerWindow::triggerSoftware()
{
    for (const OrvCPP::shared_ptr<OrvCPP::Feature>& feature : *m_features)
    {
        std::string name;
        if (!feature || feature->GetName(name) != OrvErrorSuccess || name != "TriggerSoftware")
            continue;
        const OrvErrorType result = feature->RunCommand();
        report(result == OrvErrorSuccess ? tr("Software trigger sent")
                                         : tr("Software trigger failed (error %1)").arg(int(result)));
        return;
    }
    report(tr("The camera has no software trigger"));
}

void ViewerWindow::onAcquireToggled(bool on)
{
    if (on)
    {
        QString error;
        if (!m_stream->start(&error))
        {
            report(tr("Acquisition not started: %1").arg(error));
            m_acquire->blockSignals(true);
            m_acquire->setChecked(false);
            m_acquire->blockSignals(false);
            return;
        }
        m_counter->setText(tr("Frames: %1").arg(0));
        report(tr("Acquiring"));
    }
    else
    {
        m_stream->stop();
        report(tr("Stopped after %1 frames").arg(m_stream->frameCount()));
    }
    emit acquisitionChanged(on);
}

void ViewerWindow::onFrame(const QImage& image, int frameCount)
{
    m_counter->setText(tr("Frames: %1").arg(frameCount));
    if (!image.isNull())
        m_image->setPixmap(QPixmap::fromImage(image).scaled(m_image->size(), Qt::KeepAspectRatio));
}

void ViewerWindow::report(const QString& message)
{
    statusBar()->showMessage(message);
}
