#include "SelectorWalk.h"

#include <QDebug>

bool SelectorWalk::walk(const FeatureManager::FeaturePtr& selector, const QStringList& entries,
                        const std::function<void(int)>& read)
{
    std::string saved;
    if (!selector || selector->GetValue(saved) != OrvErrorSuccess)
        return false;
    const QString savedEntry = QString::fromStdString(saved);
    const int first = entries.indexOf(savedEntry);
    if (first >= 0)
        read(first);
    QString current = savedEntry;
    for (int i = 0; i < entries.size(); ++i)
    {
        if (i == first || selector->SetValue(entries.at(i).toStdString().c_str()) != OrvErrorSuccess)
            continue;
        current = entries.at(i);
        read(i);
    }
    if (current != savedEntry && selector->SetValue(saved.c_str()) != OrvErrorSuccess &&
        selector->SetValue(saved.c_str()) != OrvErrorSuccess)
        qDebug() << "SelectorWalk" << "Error: selector not put back to" << savedEntry;
    return true;
}
