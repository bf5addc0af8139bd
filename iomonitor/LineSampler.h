#ifndef LINESAMPLER_H
#define LINESAMPLER_H

#include "FeatureManager.h"

#include <QString>
#include <QStringList>
#include <QVector>

// The electrical lines of a camera and the cheapest way it offers to read
// their levels now. Lines are found once, from the line family's
// "LineSelector" or the sync-out family's output (and input) selectors; the
// levels come from, in order of preference:
// - "LineStatusAll": one read gives every line, each at the bit the camera's
//   description numbers its selector entry with (EnumEntry <Value>; where
//   it gives none, the number the name ends in, else the position);
// - "LineStatus", read for each line with "LineSelector" pointed at it; the
//   selector is put back where it was after the walk, whatever failed;
// - the family's level masks ("LineOutLevels"/"SyncOutLevels" for outputs,
//   "LineInLevels"/"SyncInLevels" for inputs).
// A read that fails gives the level Unknown, never a guess.
class LineSampler
{
public:
    enum Source
    {
        NoLevels,
        StatusAll,
        StatusWalk,
        LevelMasks
    };

    struct Line
    {
        QString name;
        // "Input", "Output" (the camera's "LineMode" entry, or what the
        // sync-out family's selector says), or empty when the camera does not tell.
        QString direction;
        // Bit of the line in the bit field it is read from.
        int bit = 0;
        // Whether the bit field is the inputs' one (sync-out family).
        bool inputMask = false;
    };

    static constexpr int Unknown = -1;

    explicit LineSampler(const FeatureList& features);

    Source source() const;
    const QVector<Line>& lines() const;

    // Reads the direction of every line again (the line family walks
    // "LineSelector" over "LineMode" and puts it back).
    void readDirections();

    // One level per line, in the order of lines(): 0, 1 or Unknown.
    QVector<int> sample();

private:
    QVector<int> sampleStatusAll();
    QVector<int> sampleStatusWalk();
    QVector<int> sampleMasks();
    // The feature's integer value, or false when the read failed.
    static bool readInteger(const FeatureManager::FeaturePtr& feature, long long* value);

    FeatureManager m_features;
    QVector<Line> m_lines;
    QStringList m_names; // the line family's lines, as the selector names them
    Source m_source = NoLevels;
    FeatureManager::FeaturePtr m_selector;
    FeatureManager::FeaturePtr m_statusAll;
    FeatureManager::FeaturePtr m_status;
    FeatureManager::FeaturePtr m_mode;
    FeatureManager::FeaturePtr m_outLevels;
    FeatureManager::FeaturePtr m_inLevels;
};

#endif
