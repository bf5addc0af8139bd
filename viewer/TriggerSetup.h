#ifndef TRIGGERSETUP_H
#define TRIGGERSETUP_H

#include "FeatureList.h"

#include <QString>
#include <QStringList>
#include <QVector>

// A camera's trigger setup as a text file, and that file applied to cameras.
//
// The setup is what the Trigger IO page governs: each trigger's mode, source
// and activation, the acquisition mode and frame count, the exposure mode (or
// exposure auto), each line's mode, source, inverter and routing, the sync
// outputs' source and polarity, the user outputs' values and the output levels.
// The file has the form of GenICam feature persistence: comment lines starting
// with '#', then one "Name<TAB>Value" a line, every selector loop written out,
// a selector's line before the lines of the features it selects:
//
//   # Trigger setup
//   # Device = Demo -- Line camera
//   TriggerSelector	AcquisitionStart
//   TriggerMode	Off
//   ...
//   LineSelector	Line1
//   LineMode	Output
//   LineSource	UserOutput0
//   LineInverter	0
//
// Works on a feature list through the camera API only, from any thread (off
// the GUI thread as one exclusive run on cameras that offer it). Every
// selector it moves is put back where it was found, also when a read or a
// write fails.
class TriggerSetup
{
public:
    struct Value
    {
        QString name;
        QString value;
        int line = 0; // in the file it was read from; 0 when captured from a camera
    };

    // What applying a setup did to one camera.
    struct Report
    {
        QStringList written; // "Name[Selector=Entry] = value", in the order written
        QStringList refused; // the same with the camera's reason
        QStringList missing; // names of features the camera lacks, each once
        int unchanged = 0;   // values the camera already had
        QString text() const;
    };

    // The setup a camera holds now: only features it has and can read.
    static TriggerSetup capture(const FeatureList& features);
    // Reads a file's text. On a malformed line returns false, leaves this
    // setup as it was and tells the line's number and fault in error.
    bool parse(const QString& text, QString* error);

    // The file's text.
    QString text() const;
    const QVector<Value>& values() const { return m_values; }
    bool isEmpty() const { return m_values.isEmpty(); }

    // Writes the values that differ from what the camera has, selectors and
    // locks respected; one report per camera.
    Report applyTo(const FeatureList& features) const;
    QVector<Report> applyTo(const QVector<FeatureList>& cameras) const;

    // The selector a feature of the setup depends on, empty for one that has
    // none; whether a name is part of a setup at all.
    static QString selectorOf(const QString& name);
    static bool isSetupFeature(const QString& name);

private:
    void captureFrom(const FeatureList& features);

    QString m_device;
    QVector<Value> m_values;
};

#endif
