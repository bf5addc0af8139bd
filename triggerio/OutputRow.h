#ifndef OUTPUTROW_H
#define OUTPUTROW_H

#include <QCheckBox>
#include <QComboBox>
#include <QSharedPointer>

// The controls of one output line. Each pointer owns its widget; releasing the
// last reference deletes the widget, which takes it out of the grid.
class OutputRow
{
public:
    OutputRow();
    ~OutputRow();

    QSharedPointer<QComboBox> m_pComboSource;          // source signal (column 1)
    QSharedPointer<QComboBox> m_pComboUserOutSelector; // bound user output (column 4), only with user outputs
    QSharedPointer<QCheckBox> m_pCBInvert;             // inversion (column 2)
    QSharedPointer<QCheckBox> m_pCBStatus;             // line state (column 3)
    QSharedPointer<QCheckBox> m_pCBUserValue;          // user output value (column 5), only with user outputs
};

#endif
