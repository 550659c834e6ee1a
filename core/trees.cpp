// Trees of records the caller owns: each record starts with a TreeNode, the
// caller holds the root pointer, and nothing here allocates.
#include "module_globals.h"

#if !defined(_WIN64)
static_assert(sizeof(TreeNode) == 16, "the host's records start with four 32-bit links");
#endif

namespace {

// -1 from a stepper: the walk failed.
TreeNode *const kStepFailed = reinterpret_cast<TreeNode *>(static_cast<INT_PTR>(-1));

// The reference the caller gave, or the root; without a reference and with a
// `walk` link, the last node along that link from the root. False when the new
// node went in as the root of an empty tree, or when it is its own reference
// (recorded).
bool ResolveReference(TreeNode **root, TreeNode *&reference, TreeNode *node, BOOL &result,
                      TreeNode *TreeNode::*walk = nullptr)
{
    if (!root || !node) {
        OSErrorSetErrorInfo(RV_BadParms);
        result = 0;
        return false;
    }
    const bool walkFromRoot = !reference && walk;
    if (!reference)
        reference = *root;
    if (!reference) {
        *root = node;
        result = 1;
        return false;
    }
    if (reference != node && walkFromRoot)
        while (reference->*walk)
            reference = reference->*walk;
    if (reference == node) {
        OSErrorSetErrorInfo(RV_TreeBroken);
        result = 0;
        return false;
    }
    return true;
}

// Makes `node` the first child of `parent`, or the root when there is no parent.
void SetFirstChild(TreeNode **root, TreeNode *parent, TreeNode *node)
{
    if (parent)
        parent->child = node;
    else
        *root = node;
}

}  // namespace

extern "C" BOOL WINAPI OSTreeInsertBeforeNode(TreeNode **root, TreeNode *reference, TreeNode *node)
{
    BOOL result;
    if (!ResolveReference(root, reference, node, result))
        return result;
    node->prev = reference->prev;
    node->parent = reference->parent;
    node->next = reference;
    if (reference->prev)
        reference->prev->next = node;
    else
        SetFirstChild(root, reference->parent, node);
    reference->prev = node;
    return 1;
}

extern "C" BOOL WINAPI OSTreeInsertAfterNode(TreeNode **root, TreeNode *reference, TreeNode *node)
{
    BOOL result;
    if (!ResolveReference(root, reference, node, result, &TreeNode::next))
        return result;
    node->prev = reference;
    node->next = reference->next;
    node->parent = reference->parent;
    if (reference->next)
        reference->next->prev = node;
    reference->next = node;
    return 1;
}

// Meant for references that stand alone or first: the parent's child link is
// overwritten whichever sibling the reference is, and the new node gets no
// siblings of its own.
extern "C" BOOL WINAPI OSTreeInsertAboveNode(TreeNode **root, TreeNode *reference, TreeNode *node)
{
    BOOL result;
    if (!ResolveReference(root, reference, node, result))
        return result;
    node->child = reference;
    node->parent = reference->parent;
    SetFirstChild(root, reference->parent, node);
    reference->parent = node;
    return 1;
}

// An existing child of the reference is overwritten, not kept.
extern "C" BOOL WINAPI OSTreeInsertBelowNode(TreeNode **root, TreeNode *reference, TreeNode *node)
{
    BOOL result;
    if (!ResolveReference(root, reference, node, result, &TreeNode::child))
        return result;
    node->parent = reference;
    reference->child = node;
    return 1;
}

// The node leaves with its subtree. Removing a root that has a next sibling
// leaves the root null: the caller keeps track of such forests itself.
extern "C" BOOL WINAPI OSTreeRemoveNode(TreeNode **root, TreeNode *node)
{
    if (!root || !node) {
        OSErrorSetErrorInfo(RV_BadParms);
        return 0;
    }
    if (!node->next && !node->prev && !node->parent && *root != node) {
        OSErrorSetErrorInfo(RV_TreeBroken);
        return 0;
    }
    if (node->prev) {
        node->prev->next = node->next;
        if (node->next)
            node->next->prev = node->prev;
    } else {
        if (node->parent)
            node->parent->child = node->next;
        else
            *root = nullptr;
        if (node->next) {
            node->next->parent = node->parent;
            node->next->prev = nullptr;
        }
    }
    node->prev = nullptr;
    node->next = nullptr;
    node->parent = nullptr;
    return 1;
}

// Post-order along the siblings of `node`: children before their parent. The
// following node is taken before the visit, so a visitor may free its node.
extern "C" LONG_PTR WINAPI OSTreeNodeEnum(TreeNode *node, TreeStepper stepper, TreeVisitor visitor,
                                          LONG_PTR data)
{
    if (!visitor) {
        OSErrorSetErrorInfo(RV_BadParms);
        return 0;
    }
    while (node) {
        TreeNode *following;
        if (!stepper) {
            if (node->child && !OSTreeNodeEnum(node->child, nullptr, visitor, data))
                return 0;
            following = node->next;
        } else {
            following = stepper(node, visitor, data);
        }
        if (following == kStepFailed)
            return 0;
        const LONG_PTR answer = visitor(node, data);
        if (!answer)
            return 0;
        if (!following)
            return answer;
        node = following;
    }
    return 0;
}
