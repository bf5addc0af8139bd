// Aravis (gio) before Qt: gio uses "signals" as a name, Qt as a keyword.
#include <arv.h>

#include "GenICamReferenceGraph.h"

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
    auto addReference = [&](int from, ArvGcNode* to)
    {
        const auto found = indexOf.find(ARV_DOM_NODE(to));
        if (to && found != indexOf.end())
            m_references[size_t(from)].push_back(found->second);
    };
    for (size_t i = 0; i < nodes.size(); ++i)
    {
        // A structure entry is read through the address of its structure.
        ArvDomNode* owners[] = {nodes[i], ARV_IS_GC_STRUCT_ENTRY_NODE(nodes[i]) ? arv_dom_node_get_parent_node(nodes[i])
                                                                                : nullptr};
        for (ArvDomNode* owner : owners)
        {
            for (ArvDomNode* child = owner ? arv_dom_node_get_first_child(owner) : nullptr; child;
                 child = arv_dom_node_get_next_sibling(child))
            {
                if (!ARV_IS_GC_PROPERTY_NODE(child) ||
                    !isFollowed(arv_gc_property_node_get_node_type(ARV_GC_PROPERTY_NODE(child))))
                    continue;
                addReference(int(i), arv_gc_property_node_get_linked_node(ARV_GC_PROPERTY_NODE(child)));
            }
        }
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
