#ifndef SELECTORWALK_H
#define SELECTORWALK_H

#include "FeatureManager.h"

#include <QStringList>

#include <functional>

// Reads a selector-dependent feature for several entries of its selector, and
// leaves the selector where it found it. The entry the selector stands on is
// read first, without a write; every other entry costs one write, and the way
// back one more (tried twice, so that one lost packet does not leave the
// selector moved). An entry the selector refuses is skipped.
class SelectorWalk
{
public:
    // Calls read(i) with the selector at entries[i]. Returns false, having
    // written nothing, when the selector's current entry cannot be read.
    static bool walk(const FeatureManager::FeaturePtr& selector, const QStringList& entries,
                     const std::function<void(int)>& read);
};

#endif
