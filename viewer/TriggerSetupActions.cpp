#include "TriggerSetupActions.h"

#include "TriggerSetup.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QSaveFile>

TriggerSetupActions::TriggerSetupActions(QMenu* menu, std::function<FeatureList()> current, QWidget* window)
    : QObject(menu), m_current(std::move(current)), m_window(window)
{
    menu->addAction(tr("Save trigger setup..."), this, &TriggerSetupActions::onSave);
    menu->addAction(tr("Load trigger setup..."), this, &TriggerSetupActions::onLoad);
}

bool TriggerSetupActions::save(const QString& path, QString* error) const
{
    const FeatureList features = m_current();
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

bool TriggerSetupActions::load(const QString& path, QString* result) const
{
    const FeatureList features = m_current();
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

void TriggerSetupActions::onSave()
{
    const QString path = QFileDialog::getSaveFileName(m_window, tr("Save trigger setup"), QString(),
                                                      tr("Trigger setups (*.txt);;All files (*)"));
    QString error;
    if (!path.isEmpty() && !save(path, &error))
        QMessageBox::warning(m_window, tr("Save trigger setup"), error);
}

void TriggerSetupActions::onLoad()
{
    const QString path = QFileDialog::getOpenFileName(m_window, tr("Load trigger setup"), QString(),
                                                      tr("Trigger setups (*.txt);;All files (*)"));
    if (path.isEmpty())
        return;
    QString result;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool applied = load(path, &result);
    QApplication::restoreOverrideCursor();
    if (applied)
        QMessageBox::information(m_window, tr("Load trigger setup"), result);
    else
        QMessageBox::warning(m_window, tr("Load trigger setup"), result);
}
