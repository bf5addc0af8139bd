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
//
// Without loops, a read can still follow a chain long enough to overflow the
// stack (Aravis recurses once per node), or fan out so that Aravis, which
// evaluates a shared node again for every path to it, takes forever: check
// findOverload() after findLoop().
class GenICamReferenceGraph
{
public:
    // Longest chain of nodes one read may follow (each hop costs Aravis a few
    // hundred bytes of stack: far below any thread's stack; real descriptions
    // chain a few dozen nodes at most). Also the deepest category nesting.
    static constexpr int MaxChainLength = 200;
    // Most node evaluations one read may cause (about a microsecond each in
    // process, a register access each on a camera).
    static constexpr double MaxEvaluations = 50000;

    struct Overload
    {
        bool tooDeep = false; // else too many evaluations
        QStringList path;     // the longest, or the heaviest, chain; empty when none
    };

    explicit GenICamReferenceGraph(ArvGc* genicam);

    // The node names along the first loop found (in document order), the first
    // name repeated at the end; empty when there is none.
    QStringList findLoop() const;

    // A read whose chain of references is longer than MaxChainLength, or that
    // evaluates nodes more than MaxEvaluations times; path empty when none.
    // Expects a description without loops.
    Overload findOverload() const;

    // "A -> B -> A"; the middle of a very long loop is left out.
    static QString describe(const QStringList& loop);

private:
    std::vector<QString> m_names;
    std::vector<std::vector<int>> m_references;
    std::vector<std::vector<int>> m_limits; // pMin, pMax, pInc: read for the node's range
    std::vector<int> m_rangeOf;             // pValue: asked for its range when the node has none of its own
    std::vector<char> m_register;           // Aravis computes a register's address and length twice a read
};

#endif
