#ifndef GENICAMREFERENCEGRAPH_H
#define GENICAMREFERENCEGRAPH_H

#include <QString>
#include <QStringList>

#include <vector>

typedef struct _ArvGc ArvGc;

// The references between the nodes of a GenICam description that get followed
// when a node is evaluated, taken from the node tree Aravis has parsed.
//
// Aravis follows such references recursively and without any guard, so a
// description in which a value depends on itself (a formula whose variable is
// the formula, two registers whose addresses read each other) makes it recurse
// until the stack overflows. Check a description before reading any feature:
//
//   const QStringList loop = GenICamReferenceGraph(genicam).findLoop();
//   if (!loop.isEmpty())
//       refuse(GenICamReferenceGraph::describe(loop));
class GenICamReferenceGraph
{
public:
    explicit GenICamReferenceGraph(ArvGc* genicam);

    // The node names along the first loop found (in document order), the first
    // name repeated at the end; empty when there is none.
    QStringList findLoop() const;

    // "A -> B -> A"; the middle of a very long loop is left out.
    static QString describe(const QStringList& loop);

private:
    std::vector<QString> m_names;
    std::vector<std::vector<int>> m_references;
};

#endif
