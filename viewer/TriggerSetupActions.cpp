#include "TriggerSetupActions.h"

#include "TriggerSetup.h"

#include "BackgroundJobs.h"

#include <QAction>
#include <QCoreApplication>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QSaveFile>

TriggerSetupActions::TriggerSetupActions(QMenu* menu, std::function<FeatureList()> current, QWidget* window,
                                         std::function<Cameras()> every)
    : QObject(menu), m_current(std::move(current)), m_every(std::move(every)), m_window(window)
{
    m_actions << menu->addAction(tr("Save trigger setup..."), this, &TriggerSetupActions::onSave)
              << menu->addAction(tr("Load trigger setup..."), this, &TriggerSetupActions::onLoad);
    if (m_every)
        m_actions << menu->addAction(tr("Load trigger setup onto every camera..."), this,
                                     &TriggerSetupActions::onLoadEvery);
}

bool TriggerSetupActions::save(const FeatureList& features, const QString& path, QString* error)
{
    if (!features || features->isEmpty())
    {
        *error = tr("No camera is open.");
        return false;
    }
    const TriggerSetup setup = TriggerSetup::capture(features);
    QSaveFile file(path);
    if (setup.isEmpty())
        *error = tr("The camera has none of the trigger setup's features.");
    else if (!file.open(QIODevice::WriteOnly | QIODevice::Text) || file.write(setup.text().toUtf8()) < 0 || !file.commit())
        *error = tr("Cannot write %1: %2").arg(path, file.errorString());
    else
        return true;
    return false;
}

bool TriggerSetupActions::load(const FeatureList& features, const QString& path, QString* result)
{
    QFile file(path);
    TriggerSetup setup;
    QString error;
    if (!features || features->isEmpty())
        *result = tr("No camera is open.");
    else if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        *result = tr("Cannot read %1: %2").arg(path, file.errorString());
    else if (file.size() > 1 << 20)
        *result = tr("%1 is too large for a trigger setup.").arg(path);
    else if (!setup.parse(QString::fromUtf8(file.readAll()), &error))
        *result = tr("%1 is not a trigger setup (nothing was written): %2").arg(path, error);
    else
    {
        *result = setup.applyTo(features).text();
        return true;
    }
    return false;
}

void TriggerSetupActions::run(const QString& title, const std::function<bool(QString*)>& job)
{
    for (QAction* action : qAsConst(m_actions))
        action->setEnabled(false);
    const QPointer<TriggerSetupActions> self(this);
    BackgroundJobs::start([self, title, job] {
        QString message;
        const bool done = job(&message);
        if (QCoreApplication* app = QCoreApplication::instance())
            QMetaObject::invokeMethod(
                app,
                [self, title, done, message] {
                    if (!self)
                        return;
                    for (QAction* action : qAsConst(self->m_actions))
                        action->setEnabled(true);
                    if (!done)
                        QMessageBox::warning(self->m_window, title, message);
                    else if (!message.isEmpty())
                        QMessageBox::information(self->m_window, title, message);
                },
                Qt::QueuedConnection);
    });
}

void TriggerSetupActions::onSave()
{
    const QString path = QFileDialog::getSaveFileName(m_window, tr("Save trigger setup"), QString(),
                                                      tr("Trigger setups (*.txt);;All files (*)"));
    const FeatureList features = m_current();
    if (!path.isEmpty())
        run(tr("Save trigger setup"), [features, path](QString* error) { return save(features, path, error); });
}

QString TriggerSetupActions::askLoadPath()
{
    return QFileDialog::getOpenFileName(m_window, tr("Load trigger setup"), QString(),
                                        tr("Trigger setups (*.txt);;All files (*)"));
}

void TriggerSetupActions::onLoad()
{
    const QString path = askLoadPath();
    const FeatureList features = m_current();
    if (!path.isEmpty())
        run(tr("Load trigger setup"), [features, path](QString* result) { return load(features, path, result); });
}

void TriggerSetupActions::onLoadEvery()
{
    const QString path = askLoadPath();
    const Cameras cameras = m_every();
    if (path.isEmpty())
        return;
    // One report per camera; a camera that cannot take the file does not keep
    // the others from theirs.
    run(tr("Load trigger setup"),
        [cameras, path](QString* result)
        {
            bool any = false;
            for (const auto& camera : cameras)
            {
                QString report;
                any = load(camera.second, path, &report) || any;
                *result += camera.first + ":\n" + report + "\n";
            }
            return any;
        });
}
