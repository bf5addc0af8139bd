// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "GenICamReferenceGraph.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace
{

// The references that take part in evaluating a node:
// - pValue, pVariable, pAddress, pIndex, pValueIndexed, pValueDefault,
//   pLength and pCommandValue are read by Aravis whenever the node's value,
//   address or length is computed. A loop among them is the endless
//   recursion that brings the host down. (The pOffset attribute of a pIndex
//   is not seen: Aravis keeps it to itself and aborts when it is asked for.)
// - pIsImplemented, pIsAvailable and pIsLocked give the node's access state.
//   Aravis 0.8 reads them only when that state is asked for, but GenICam
//   checks a node's access before it reads its value (GenApi does), so a
//   value depending on its own availability or lock is a loop there, and such
//   a description is broken for every reader.
// Left out, as they are legitimately circular or never evaluated in a chain:
// - pMin, pMax, pInc are read only for the node's own range (when asked for,
//   or to check a write), and a limit formula reads other values, not their
//   limits (Width's maximum reads OffsetX, OffsetX's maximum reads Width:
//   that is normal and ends).
// - pSelected lists the features a selector switches; they commonly read the
//   selector back through their pIndex or address formula.
// findOverload follows pMin, pMax and pInc too (a read of the range
// evaluates them), and a node's range may ask its pValue for its range.
// - pInvalidator is only compared for the register cache, pFeature lists the
//   members of a category (the feature walk guards itself), and pPort names
//   a Port node, which references nothing.
bool isFollowed(ArvGcPropertyNodeType type)
{
    switch (type)
    {
    case ARV_GC_PROPERTY_NODE_TYPE_P_VALUE:
    case ARV_GC_PROPERTY_NODE_TYPE_P_VARIABLE:
    case ARV_GC_PROPERTY_NODE_TYPE_P_ADDRESS:
    case ARV_GC_PROPERTY_NODE_TYPE_P_INDEX:
    case ARV_GC_PROPERTY_NODE_TYPE_P_VALUE_INDEXED:
    case ARV_GC_PROPERTY_NODE_TYPE_P_VALUE_DEFAULT:
    case ARV_GC_PROPERTY_NODE_TYPE_P_LENGTH:
    case ARV_GC_PROPERTY_NODE_TYPE_P_COMMAND_VALUE:
    case ARV_GC_PROPERTY_NODE_TYPE_P_IS_IMPLEMENTED:
    case ARV_GC_PROPERTY_NODE_TYPE_P_IS_AVAILABLE:
    case ARV_GC_PROPERTY_NODE_TYPE_P_IS_LOCKED:
        return true;
    default:
        return false;
    }
}

// The next node of a depth-first walk through the elements below top.
ArvDomNode* nextNode(ArvDomNode* node, ArvDomNode* top)
{
    if (ArvDomNode* child = arv_dom_node_get_first_child(node))
        return child;
    for (; node && node != top; node = arv_dom_node_get_parent_node(node))
        if (ArvDomNode* sibling = arv_dom_node_get_next_sibling(node))
            return sibling;
    return nullptr;
}

} // namespace

GenICamReferenceGraph::GenICamReferenceGraph(ArvGc* genicam)
{
    ArvDomNode* top =
        genicam ? ARV_DOM_NODE(arv_dom_document_get_document_element(ARV_DOM_DOCUMENT(genicam))) : nullptr;
    if (!top)
        return;

    // Every node with a name (features, registers, formulas, enumeration and
    // structure entries), in document order. Property nodes have no children
    // but text, so the walk through them costs nothing.
    std::unordered_map<ArvDomNode*, int> indexOf;
    std::vector<ArvDomNode*> nodes;
    for (ArvDomNode* node = top; node; node = nextNode(node, top))
    {
        if (!ARV_IS_GC_FEATURE_NODE(node))
            continue;
        const char* name = arv_gc_feature_node_get_name(ARV_GC_FEATURE_NODE(node));
        indexOf.emplace(node, int(nodes.size()));
        nodes.push_back(node);
        m_names.push_back(QString::fromUtf8(name ? name : "?"));
    }

    m_references.resize(nodes.size());
    m_limits.resize(nodes.size());
    m_rangeOf.assign(nodes.size(), -1);
    m_register.resize(nodes.size());
    auto indexOfNode = [&](ArvGcNode* node)
    {
        const auto found = indexOf.find(ARV_DOM_NODE(node));
        return node && found != indexOf.end() ? found->second : -1;
    };
    auto addProperties = [&](size_t i, ArvDomNode* owner)
    {
        for (ArvDomNode* child = arv_dom_node_get_first_child(owner); child;
             child = arv_dom_node_get_next_sibling(child))
        {
            if (!ARV_IS_GC_PROPERTY_NODE(child))
                continue;
            const ArvGcPropertyNodeType type = arv_gc_property_node_get_node_type(ARV_GC_PROPERTY_NODE(child));
            const int to = indexOfNode(arv_gc_property_node_get_linked_node(ARV_GC_PROPERTY_NODE(child)));
            if (to < 0)
                continue;
            if (isFollowed(type))
                m_references[i].push_back(to);
            if (type == ARV_GC_PROPERTY_NODE_TYPE_P_MINIMUM || type == ARV_GC_PROPERTY_NODE_TYPE_P_MAXIMUM ||
                type == ARV_GC_PROPERTY_NODE_TYPE_P_INCREMENT)
                m_limits[i].push_back(to);
            if (type == ARV_GC_PROPERTY_NODE_TYPE_P_VALUE)
                m_rangeOf[i] = to;
        }
    };
    for (size_t i = 0; i < nodes.size(); ++i)
    {
        const bool entry = ARV_IS_GC_STRUCT_ENTRY_NODE(nodes[i]);
        m_register[i] = entry || ARV_IS_GC_REGISTER_NODE(nodes[i]);
        addProperties(i, nodes[i]);
        if (!entry)
            continue;
        // A structure entry is read through the address of its structure: it
        // takes the structure's references after its own. The structure comes
        // first in document order, its references are known: copied, not
        // gathered again among all the structure's entries for each entry.
        ArvDomNode* structure = arv_dom_node_get_parent_node(nodes[i]);
        const auto found = indexOf.find(structure);
        if (found == indexOf.end())
        {
            if (structure)
                addProperties(i, structure);
            continue;
        }
        const size_t s = size_t(found->second);
        m_references[i].insert(m_references[i].end(), m_references[s].begin(), m_references[s].end());
        m_limits[i].insert(m_limits[i].end(), m_limits[s].begin(), m_limits[s].end());
        if (m_rangeOf[s] >= 0)
            m_rangeOf[i] = m_rangeOf[s];
    }
}

QStringList GenICamReferenceGraph::findLoop() const
{
    // Depth first without recursion: descriptions can be large and deep.
    enum State : char
    {
        Unvisited,
        OnPath,
        Done
    };
    std::vector<State> state(m_names.size(), Unvisited);
    std::vector<std::pair<int, size_t>> path; // node, next reference to follow
    for (size_t start = 0; start < m_names.size(); ++start)
    {
        if (state[start] != Unvisited)
            continue;
        path.emplace_back(int(start), 0);
        state[start] = OnPath;
        while (!path.empty())
        {
            auto& [node, next] = path.back();
            const std::vector<int>& references = m_references[size_t(node)];
            if (next == references.size())
            {
                state[size_t(node)] = Done;
                path.pop_back();
                continue;
            }
            const int target = references[next++];
            if (state[size_t(target)] == Unvisited)
            {
                state[size_t(target)] = OnPath;
                path.emplace_back(target, 0);
            }
            else if (state[size_t(target)] == OnPath)
            {
                QStringList loop;
                size_t first = path.size() - 1;
                while (path[first].first != target)
                    --first;
                for (size_t i = first; i < path.size(); ++i)
                    loop << m_names[size_t(path[i].first)];
                loop << m_names[size_t(target)];
                return loop;
            }
        }
    }
    return {};
}

GenICamReferenceGraph::Overload GenICamReferenceGraph::findOverload() const
{
    // Two states per node: its value (even) and its range (odd). A value reads
    // the values it references, a range also its limits' values and maybe its
    // pValue's range; a value never needs a range, so without loops among the
    // references there are none here either. Per state: the longest chain
    // below it and how many evaluations it costs Aravis, which caches nothing
    // and evaluates a register's address and a converter's range twice.
    const size_t count = 2 * m_names.size();
    // Every state's edges, built once: state s's are edges[first[s]] up to
    // edges[first[s + 1]], references first, then limits, then the range of
    // its pValue (the order decides which chain is reported).
    std::vector<size_t> first{0};
    std::vector<std::pair<size_t, int>> edges; // state, evaluations per read
    first.reserve(count + 1);
    for (size_t state = 0; state < count; ++state)
    {
        const size_t node = state / 2;
        const int times = m_register[node] ? 2 : 1;
        for (int target : m_references[node])
            edges.emplace_back(2 * size_t(target), times);
        if (state % 2)
        {
            for (int target : m_limits[node])
                edges.emplace_back(2 * size_t(target), 1);
            if (m_rangeOf[node] >= 0)
                edges.emplace_back(2 * size_t(m_rangeOf[node]) + 1, 2);
        }
        first.push_back(edges.size());
    }
    std::vector<int> depth(count, -1); // -1: not reached yet, -2: on the path
    std::vector<double> cost(count, 0);
    std::vector<std::pair<size_t, size_t>> path; // state, its next edge
    for (size_t start = 0; start < count; ++start)
    {
        if (depth[start] != -1)
            continue;
        path.emplace_back(start, first[start]);
        depth[start] = -2;
        while (!path.empty())
        {
            const size_t state = path.back().first;
            if (path.back().second < first[state + 1])
            {
                const size_t target = edges[path.back().second++].first;
                if (depth[target] == -1)
                {
                    depth[target] = -2;
                    path.emplace_back(target, first[target]);
                }
                continue;
            }
            int longest = 0;
            double evaluations = 1;
            for (size_t edge = first[state]; edge < first[state + 1]; ++edge)
            {
                const auto [target, times] = edges[edge];
                if (depth[target] >= 0) // a loop, if any, is findLoop's to report
                {
                    longest = std::max(longest, depth[target] + 1);
                    evaluations = std::min(evaluations + times * cost[target], 1e300);
                }
            }
            depth[state] = longest;
            cost[state] = evaluations;
            path.pop_back();
        }
    }

    // The first node in document order that is too deep, else too costly,
    // with the chain that makes it so.
    Overload overload;
    for (bool deep : {true, false})
        for (size_t state = 0; state < count; ++state)
        {
            if (deep ? depth[state] <= MaxChainLength : cost[state] <= MaxEvaluations)
                continue;
            overload.tooDeep = deep;
            for (size_t at = state, next = state; next != count; at = next)
            {
                overload.path << m_names[at / 2];
                next = count;
                double heaviest = 0;
                for (size_t edge = first[at]; edge < first[at + 1]; ++edge)
                {
                    const auto [target, times] = edges[edge];
                    if (deep ? depth[target] == depth[at] - 1 : times * cost[target] > heaviest)
                    {
                        next = target;
                        heaviest = times * cost[target];
                        if (deep)
                            break;
                    }
                }
            }
            return overload;
        }
    return overload;
}

QString GenICamReferenceGraph::describe(const QStringList& loop)
{
    constexpr int shown = 4; // names kept at each end of a long loop
    if (loop.size() <= 2 * shown + 1)
        return loop.join(QStringLiteral(" -> "));
    return QStringLiteral("%1 -> ... (%2 more) ... -> %3")
        .arg(loop.mid(0, shown).join(QStringLiteral(" -> ")))
        .arg(loop.size() - 2 * shown)
        .arg(loop.mid(loop.size() - shown).join(QStringLiteral(" -> ")));
}
