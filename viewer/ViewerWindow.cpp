#include "ViewerWindow.h"

#include "CameraChooser.h"
#include "CameraFinder.h"
#include "CameraStream.h"
#include "GenICamCamera.h"
#include "PluginHost.h"
#include "TriggerSetupActions.h"
#include "TabExtensionInterface.h"

#include <QApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QTranslator>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cstdio>

namespace
{

// How long the window waits between two attempts to find a lost camera again.
const int SearchPauseMs = 2000;
// How often a camera found while the pages are busy asks again whether they can be rebuilt.
const int RetryPeriodMs = 100;
// The dynamic property on which a page hands its history on to the page built after it.
const char* const CarryOverProperty = "triggerioCarryOver";

// Lets go of a device in the background: the last reference to a camera that
// still answers says goodbye to it over the link.
void letGoInBackground(std::shared_ptr<const GenICamCamera> camera)
{
    if (camera)
        GenICamCamera::runInBackground([camera = std::move(camera)]() mutable { camera.reset(); });
}

} // namespace

ViewerWindow::ViewerWindow(GenICamCamera* camera, QWidget* parent)
    : QMainWindow(parent)
    , m_camera(camera)
    , m_features(camera->features())
    , m_host(new PluginHost(this))
    , m_stream(new CameraStream(camera, this))
    , m_finder(new CameraFinder(this))
    , m_retry(new QTimer(this))
    , m_chooser(new CameraChooser)
    , m_views(new QStackedWidget)
    , m_cameraView(new QWidget)
    , m_tabs(new QTabWidget)
    , m_image(new QLabel)
    , m_counter(new QLabel)
    , m_acquire(new QPushButton(tr("Acquire")))
{
    setWindowTitle(camera->isOpen() ? tr("Trigger IO viewer - %1").arg(camera->id()) : tr("Trigger IO viewer"));

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

    QHBoxLayout* layout = new QHBoxLayout(m_cameraView);
    layout->addWidget(live, 1);
    layout->addWidget(m_tabs, 2);
    m_chooser->setObjectName("cameraChooser");
    m_views->addWidget(m_chooser);
    m_views->addWidget(m_cameraView);
    m_views->setCurrentWidget(camera->isOpen() ? m_cameraView : m_chooser);
    setCentralWidget(m_views);
    m_chooser->setCurrentCamera(camera->id(), camera->serialNumber());
    connect(m_chooser, &CameraChooser::opened, this, &ViewerWindow::onCameraChosen);
    connect(m_chooser, &CameraChooser::backRequested, this, &ViewerWindow::showCameraView);

    QMenu* cameraMenu = menuBar()->addMenu(tr("&Camera"));
    cameraMenu->addAction(tr("&Open..."), this, &ViewerWindow::showChooser, QKeySequence::Open);
    cameraMenu->addSeparator();
    new TriggerSetupActions(cameraMenu, [this] { return m_features; }, this);
    cameraMenu->addSeparator();
    cameraMenu->addAction(tr("&Quit"), this, &QWidget::close, QKeySequence::Quit);

    connect(m_acquire, &QPushButton::toggled, this, &ViewerWindow::onAcquireToggled);
    connect(m_stream, &CameraStream::frameReceived, this, &ViewerWindow::onFrame);
    connect(m_stream, &CameraStream::started, this,
            [this]
            {
                report(tr("Acquiring"));
                announceAcquiring(true);
            });
    connect(m_stream, &CameraStream::failed, this,
            [this](const QString& reason)
            {
                report(tr("Acquisition not started: %1").arg(reason));
                m_acquire->blockSignals(true);
                m_acquire->setChecked(false);
                m_acquire->blockSignals(false);
            });
    connect(m_stream, &CameraStream::commandRun, this,
            [this](int result)
            {
                report(result == OrvErrorSuccess ? tr("Software trigger sent")
                                                 : tr("Software trigger failed (error %1)").arg(result));
            });
    m_finder->setInterval(SearchPauseMs);
    connect(m_finder, &CameraFinder::found, this, &ViewerWindow::onCameraFound);
    // The backend tells of a loss on its own threads: handed to the GUI thread.
    m_camera->setLostHandler([this] { QMetaObject::invokeMethod(this, &ViewerWindow::checkCamera, Qt::QueuedConnection); });
    m_retry->setInterval(RetryPeriodMs);
    connect(m_retry, &QTimer::timeout, this, &ViewerWindow::rebuildWhenSafe);
    if (camera->isOpen())
        setCameraStatus(tr("Camera %1 open").arg(camera->id()));
}

ViewerWindow::~ViewerWindow()
{
    m_camera->setLostHandler(nullptr); // waits for a call in progress
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
    const QList<TabExtensionInterface*> plugins = m_host->load(pluginFolder);
    m_problems << m_host->problems();
    for (TabExtensionInterface* plugin : plugins)
        plugin->connectFromAcquire(this, SIGNAL(acquisitionChanged(bool)));
    m_plugins << plugins;
    const int added = m_camera->isOpen() ? buildPages() : 0;
    if (!m_problems.isEmpty())
        report(m_problems.join("; "));
    return added;
}

bool ViewerWindow::hasPlugins() const
{
    return !m_plugins.isEmpty();
}

int ViewerWindow::pageIndex(const QString& title) const
{
    for (int i = 0; i < m_tabs->count(); ++i)
    {
        if (m_tabs->tabText(i) == title)
            return i;
        // A plug-in's widget names its page with tr(): its class is the
        // context the English title is translated in.
        for (const QWidget* widget : m_tabs->widget(i)->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        {
            const QByteArray english = title.toUtf8();
            if (QCoreApplication::translate(widget->metaObject()->className(), english.constData()) ==
                m_tabs->tabText(i))
                return i;
        }
    }
    return -1;
}

void ViewerWindow::showPageWhenOpen(const QString& title)
{
    m_firstPage = title;
}

int ViewerWindow::buildPages(const QHash<TabExtensionInterface*, QVariant>& carried)
{
    int added = 0;
    for (TabExtensionInterface* plugin : qAsConst(m_plugins))
    {
        QWidget* page = new QWidget;
        if (carried.contains(plugin))
            page->setProperty(CarryOverProperty, carried.value(plugin));
        const TabExtensionResult result = plugin->get(m_features, *page, nullptr);
        if (result == 4) // the plug-in does not serve this camera: no page, nothing to report
        {
            delete page;
            continue;
        }
        if (result != 0)
        {
            const QString problem = tr("%1 offers no tab for this camera (result %2)")
                                        .arg(plugin->metaObject()->className())
                                        .arg(result);
            if (!m_problems.contains(problem))
                m_problems << problem;
            delete page;
            continue;
        }
        // The plug-in names its page through the page's accessible name.
        const QString title =
            page->accessibleName().isEmpty() ? plugin->metaObject()->className() : page->accessibleName();
        m_tabs->addTab(page, title);
        m_pagePlugins.insert(page, plugin);
        ++added;
    }
    return added;
}

void ViewerWindow::releasePages()
{
    while (m_tabs->count() > 0)
    {
        QWidget* page = m_tabs->widget(0);
        m_tabs->removeTab(0);
        delete page;
    }
    m_pagePlugins.clear();
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

bool ViewerWindow::isStreaming() const
{
    return m_stream->isRunning();
}

bool ViewerWindow::isCameraLost() const
{
    return m_lost;
}

CameraChooser* ViewerWindow::chooser() const
{
    return m_chooser;
}

void ViewerWindow::showChooser()
{
    m_views->setCurrentWidget(m_chooser);
    m_chooser->list()->setFocus();
}

void ViewerWindow::showCameraView()
{
    if (m_camera->isOpen())
        m_views->setCurrentWidget(m_cameraView);
}

void ViewerWindow::announceAcquiring(bool acquiring)
{
    if (m_announced == acquiring)
        return;
    m_announced = acquiring;
    emit acquisitionChanged(acquiring);
}

void ViewerWindow::checkCamera()
{
    if (m_lost || !m_camera->isDeviceLost())
        return;
    m_lost = true;
    m_stream->stop(); // sends nothing to a lost camera
    m_acquire->blockSignals(true);
    m_acquire->setChecked(false);
    m_acquire->blockSignals(false);
    m_acquire->setEnabled(false);
    announceAcquiring(false);
    m_tabs->setEnabled(false);
    m_image->setPixmap(QPixmap());
    m_image->setText(tr("No camera"));
    const QString reason = m_camera->lostReason();
    setCameraStatus(reason.isEmpty() ? tr("Camera %1 lost").arg(m_camera->id())
                                     : tr("Camera %1 lost (%2)").arg(m_camera->id(), reason));
    // A model on the in-process fake device cannot come back by itself.
    if (!m_camera->id().startsWith(QLatin1String(GenICamCamera::FakePrefix)))
        m_finder->start(m_camera->id(), m_camera->serialNumber());
}

void ViewerWindow::onCameraFound(std::shared_ptr<GenICamCamera> camera)
{
    if (m_found && !m_foundAgain)
    {
        letGoInBackground(std::move(camera)); // a camera chosen meanwhile goes first
        return;
    }
    letGoInBackground(std::move(m_found)); // one found before and still waiting
    m_found = std::move(camera);
    m_foundAgain = true;
    rebuildWhenSafe();
}

void ViewerWindow::onCameraChosen(std::shared_ptr<GenICamCamera> camera)
{
    m_finder->stop();
    letGoInBackground(std::move(m_found)); // found again, or chosen before, and still waiting
    m_found = std::move(camera);
    m_foundAgain = false;
    rebuildWhenSafe();
}

void ViewerWindow::rebuildWhenSafe()
{
    if (!m_found)
    {
        m_retry->stop();
        return;
    }
    // A page's modal dialog or popup runs an event loop of its own (exec(), or
    // QFileDialog's and QMessageBox's static functions) inside code of the page.
    if (QApplication::activeModalWidget() || QApplication::activePopupWidget())
    {
        if (!m_retry->isActive())
        {
            report(tr("Camera %1 answers again: the pages are built anew once the dialog or menu is closed")
                       .arg(m_camera->id()));
            m_retry->start();
        }
        return;
    }
    m_retry->stop();
    const std::shared_ptr<GenICamCamera> camera = std::move(m_found);
    m_found.reset();
    const bool again = m_foundAgain;
    if (m_acquire->isChecked())
        m_acquire->click(); // stopped on the camera it runs on

    // What each page hands on to the one its plug-in builds next (the same
    // camera found again only), and the page the user is on.
    const QString current = m_firstPage.isEmpty() ? m_tabs->tabText(m_tabs->currentIndex()) : m_firstPage;
    QHash<TabExtensionInterface*, QVariant> carried;
    for (int i = 0; again && i < m_tabs->count(); ++i)
        carried.insert(m_pagePlugins.value(m_tabs->widget(i)), m_tabs->widget(i)->property(CarryOverProperty));
    // The old pages and feature handles go first; the old device is let go
    // of in the background (a camera still answering is told goodbye).
    releasePages();
    m_features.reset();
    std::shared_ptr<const GenICamCamera> old = m_camera->handle();
    m_camera->adopt(*camera);
    letGoInBackground(std::move(old));
    m_features = m_camera->features();
    m_lost = false;
    if (buildPages(carried) == 0 && !again)
    {
        m_chooser->setProblem(m_camera->id(), tr("No tab for this camera"));
        m_features.reset();
        old = m_camera->handle();
        m_camera->close();
        letGoInBackground(std::move(old));
        m_features = m_camera->features(); // none
        setWindowTitle(tr("Trigger IO viewer"));
        m_chooser->setCurrentCamera(QString());
        showChooser();
        return;
    }
    const int page = pageIndex(current);
    if (page >= 0)
        m_tabs->setCurrentIndex(page);
    m_firstPage.clear();
    m_tabs->setEnabled(true);
    m_acquire->setEnabled(true);
    m_image->setPixmap(QPixmap());
    m_image->setText(tr("No image"));
    m_counter->setText(tr("Frames: %1").arg(0));
    setWindowTitle(tr("Trigger IO viewer - %1").arg(m_camera->id()));
    m_chooser->setCurrentCamera(m_camera->id(), m_camera->serialNumber());
    m_views->setCurrentWidget(m_cameraView);
    setCameraStatus(tr("Camera %1 open").arg(m_camera->id()));
}

void ViewerWindow::triggerSoftware()
{
    for (const OrvCPP::shared_ptr<OrvCPP::Feature>& feature : *m_features)
    {
        std::string name;
        if (!feature || feature->GetName(name) != OrvErrorSuccess || name != "TriggerSoftware")
            continue;
        m_stream->runCommand(feature);
        return;
    }
    report(tr("The camera has no software trigger"));
}

void ViewerWindow::onAcquireToggled(bool on)
{
    if (on)
    {
        m_counter->setText(tr("Frames: %1").arg(0));
        report(tr("Starting the acquisition"));
        m_stream->start(); // "Acquiring" or the reason follows
        return;
    }
    m_stream->stop();
    report(tr("Stopped after %1 frames").arg(m_stream->frameCount()));
    announceAcquiring(false);
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

void ViewerWindow::setCameraStatus(const QString& message)
{
    report(message);
    // Not through Qt's message handler: the plug-ins install one that swallows everything.
    std::fprintf(stderr, "triggerio-viewer: %s\n", qPrintable(message));
    std::fflush(stderr);
}
