// Trees of caller-owned records: each insert and remove checked link by link,
// the rules that leave links as they are on purpose, and the walk.
#include <vector>
#include "qz_test.h"

namespace {

struct Record {
    TreeNode links;
    int id;
};

class Trees : public ErrorStateTest {
protected:
    void SetUp() override
    {
        ErrorStateTest::SetUp();
        oldMode = OSErrorSetErrorMode(RV_TreeBroken, 2);   // recorded, not fatal
        for (int i = 0; i < 8; ++i)
            r[i] = Record{{}, i};
    }
    void TearDown() override
    {
        OSErrorSetErrorMode(RV_TreeBroken, oldMode);
        ErrorStateTest::TearDown();
    }
    TreeNode *N(int i) { return &r[i].links; }
    // prev, next, parent, child of record i as ids, -1 for null.
    std::vector<int> Links(int i)
    {
        auto id = [](TreeNode *n) { return n ? reinterpret_cast<Record *>(n)->id : -1; };
        const TreeNode &n = r[i].links;
        return {id(n.prev), id(n.next), id(n.parent), id(n.child)};
    }
    DWORD oldMode = 0;
    Record r[8];
    TreeNode *root = nullptr;
};

using Insert = BOOL(WINAPI *)(TreeNode **, TreeNode *, TreeNode *);
const Insert kInserts[] = {OSTreeInsertBeforeNode, OSTreeInsertAfterNode, OSTreeInsertAboveNode,
                           OSTreeInsertBelowNode};

TEST_F(Trees, AnyInsertIntoAnEmptyTreeMakesTheRootAndANodeIsNotItsOwnReference)
{
    for (Insert insert : kInserts) {
        root = nullptr;
        r[1].links = TreeNode{};
        r[2].links = TreeNode{};
        r[1].links.child = N(2);   // a whole subtree may go in
        EXPECT_EQ(1, insert(&root, nullptr, N(1)));
        EXPECT_EQ(N(1), root);
        EXPECT_EQ((std::vector<int>{-1, -1, -1, 2}), Links(1));
        EXPECT_EQ(0, insert(&root, N(1), N(1)));
        EXPECT_EQ(RV_TreeBroken, OSErrorGetErrorValue());
        EXPECT_EQ(N(1), root);
        OSErrorClearError();
        EXPECT_EQ(0, insert(nullptr, N(1), N(3)));
        EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
        OSErrorClearError();
    }
}

TEST_F(Trees, SiblingInsertsRelinkNeighboursParentAndRoot)
{
    ASSERT_EQ(1, OSTreeInsertAfterNode(&root, nullptr, N(1)));
    ASSERT_EQ(1, OSTreeInsertAfterNode(&root, nullptr, N(3)));     // after the last: 1 3
    ASSERT_EQ(1, OSTreeInsertBeforeNode(&root, nullptr, N(0)));    // before the root: 0 1 3
    ASSERT_EQ(1, OSTreeInsertBeforeNode(&root, N(3), N(2)));       // 0 1 2 3
    EXPECT_EQ(N(0), root);
    EXPECT_EQ((std::vector<int>{-1, 1, -1, -1}), Links(0));
    EXPECT_EQ((std::vector<int>{0, 2, -1, -1}), Links(1));
    EXPECT_EQ((std::vector<int>{1, 3, -1, -1}), Links(2));
    EXPECT_EQ((std::vector<int>{2, -1, -1, -1}), Links(3));
    ASSERT_EQ(1, OSTreeInsertBelowNode(&root, N(2), N(4)));        // 2 has child 4
    ASSERT_EQ(1, OSTreeInsertBeforeNode(&root, N(4), N(5)));       // 5 becomes 2's first child
    ASSERT_EQ(1, OSTreeInsertAfterNode(&root, N(5), N(6)));        // 5 6 4 under 2
    EXPECT_EQ(N(5), r[2].links.child);
    EXPECT_EQ((std::vector<int>{-1, 6, 2, -1}), Links(5));
    EXPECT_EQ((std::vector<int>{5, 4, 2, -1}), Links(6));
    EXPECT_EQ((std::vector<int>{6, -1, 2, -1}), Links(4));
    ASSERT_EQ(1, OSTreeInsertBelowNode(&root, nullptr, N(7)));     // deepest first child: 0
    EXPECT_EQ((std::vector<int>{-1, -1, 0, -1}), Links(7));
    EXPECT_EQ(N(7), r[0].links.child);
    // A walk from the root that ends at the new node would link it to itself.
    EXPECT_EQ(0, OSTreeInsertAfterNode(&root, nullptr, N(3)));
    EXPECT_EQ(0, OSTreeInsertBelowNode(&root, nullptr, N(7)));
    EXPECT_EQ(RV_TreeBroken, OSErrorGetErrorValue());
    EXPECT_EQ((std::vector<int>{2, -1, -1, -1}), Links(3));
    EXPECT_EQ((std::vector<int>{-1, -1, 0, -1}), Links(7));
}

TEST_F(Trees, AboveAndBelowOverwriteTheChildLinkTheyReplace)
{
    // 0 with children 1 2; above 2 (not the first child) still takes 0's child.
    OSTreeInsertBelowNode(&root, nullptr, N(0));
    OSTreeInsertBelowNode(&root, N(0), N(1));
    OSTreeInsertAfterNode(&root, N(1), N(2));
    ASSERT_EQ(1, OSTreeInsertAboveNode(&root, N(2), N(3)));
    EXPECT_EQ(N(3), r[0].links.child) << "1 is no longer reached from 0";
    EXPECT_EQ((std::vector<int>{-1, -1, 0, 2}), Links(3)) << "the new node gets no siblings";
    EXPECT_EQ((std::vector<int>{1, -1, 3, -1}), Links(2)) << "the reference keeps its siblings";
    // Above the root: the new node is the root.
    ASSERT_EQ(1, OSTreeInsertAboveNode(&root, nullptr, N(4)));
    EXPECT_EQ(N(4), root);
    EXPECT_EQ((std::vector<int>{-1, -1, -1, 0}), Links(4));
    EXPECT_EQ(N(4), r[0].links.parent);
    // Below a node that has a child drops that child.
    ASSERT_EQ(1, OSTreeInsertBelowNode(&root, N(0), N(5)));
    EXPECT_EQ(N(5), r[0].links.child);
    EXPECT_EQ((std::vector<int>{-1, -1, 0, -1}), Links(5));
}

TEST_F(Trees, RemoveUnlinksAndKeepsTheSubtree)
{
    OSTreeInsertAfterNode(&root, nullptr, N(0));
    OSTreeInsertAfterNode(&root, nullptr, N(1));
    OSTreeInsertBelowNode(&root, N(1), N(2));
    OSTreeInsertAfterNode(&root, N(2), N(3));
    OSTreeInsertAfterNode(&root, N(3), N(4));
    OSTreeInsertBelowNode(&root, N(3), N(5));   // 0 1(2 3(5) 4)
    ASSERT_EQ(1, OSTreeRemoveNode(&root, N(3)));   // a middle sibling
    EXPECT_EQ((std::vector<int>{-1, -1, -1, 5}), Links(3));
    EXPECT_EQ((std::vector<int>{-1, 4, 1, -1}), Links(2));
    EXPECT_EQ((std::vector<int>{2, -1, 1, -1}), Links(4));
    ASSERT_EQ(1, OSTreeRemoveNode(&root, N(2)));   // a first child: the next takes its place
    EXPECT_EQ(N(4), r[1].links.child);
    EXPECT_EQ((std::vector<int>{-1, -1, 1, -1}), Links(4));
    EXPECT_EQ(0, OSTreeRemoveNode(&root, N(3))) << "no longer in the tree";
    EXPECT_EQ(RV_TreeBroken, OSErrorGetErrorValue());
    OSErrorClearError();
    EXPECT_EQ(0, OSTreeRemoveNode(&root, N(6))) << "never inserted";
    EXPECT_EQ(RV_TreeBroken, OSErrorGetErrorValue());
    OSErrorClearError();
    // The root with a next sibling: the root is cleared, the sibling stands alone.
    ASSERT_EQ(1, OSTreeRemoveNode(&root, N(0)));
    EXPECT_EQ(nullptr, root);
    EXPECT_EQ((std::vector<int>{-1, -1, -1, 4}), Links(1));
    // A lone root leaves the tree empty, and then removes no more.
    root = N(1);
    ASSERT_EQ(1, OSTreeRemoveNode(&root, N(1)));
    EXPECT_EQ(nullptr, root);
    EXPECT_EQ(0, OSTreeRemoveNode(&root, N(1)));
    OSErrorClearError();
}

std::vector<int> g_visits;

LONG_PTR WINAPI Visit(TreeNode *node, LONG_PTR stopAt)
{
    const int id = reinterpret_cast<Record *>(node)->id;
    g_visits.push_back(id);
    return id == stopAt ? 0 : 100 + id;
}

LONG_PTR WINAPI VisitAndFree(TreeNode *node, LONG_PTR)
{
    g_visits.push_back(reinterpret_cast<Record *>(node)->id);
    memset(node, 0xDD, sizeof(TreeNode));   // the record is gone
    return 1;
}

// Steps through the records in reverse id order; fails when it reaches 0
// while asked to (data 1000).
TreeNode *WINAPI StepDown(TreeNode *node, TreeVisitor, LONG_PTR data)
{
    Record *record = reinterpret_cast<Record *>(node);
    if (record->id == 0)
        return data == 1000 ? reinterpret_cast<TreeNode *>(static_cast<INT_PTR>(-1)) : nullptr;
    return &(record - 1)->links;
}

TEST_F(Trees, WalkVisitsChildrenFirstAndSiblingsInOrder)
{
    // 0(1 2(3 4)) 5(6)
    OSTreeInsertAfterNode(&root, nullptr, N(0));
    OSTreeInsertAfterNode(&root, nullptr, N(5));
    OSTreeInsertBelowNode(&root, N(0), N(1));
    OSTreeInsertAfterNode(&root, N(1), N(2));
    OSTreeInsertBelowNode(&root, N(2), N(3));
    OSTreeInsertAfterNode(&root, N(3), N(4));
    OSTreeInsertBelowNode(&root, N(5), N(6));
    const struct {
        TreeNode *start;
        TreeStepper stepper;
        LONG_PTR stopAt;
        LONG_PTR result;
        std::vector<int> visits;
    } rows[] = {
        {N(0), nullptr, -1, 105, {1, 3, 4, 2, 0, 6, 5}},
        {N(2), nullptr, -1, 102, {3, 4, 2}},
        {N(0), nullptr, 3, 0, {1, 3}},               // a stop inside a child walk ends it all
        {N(0), nullptr, 0, 0, {1, 3, 4, 2, 0}},
        {N(3), StepDown, -1, 100, {3, 2, 1, 0}},     // the stepper, not the links, leads
        {N(3), StepDown, 1000, 0, {3, 2, 1}},        // a failing stepper ends before the visit
        {nullptr, nullptr, -1, 0, {}},
    };
    for (const auto &row : rows) {
        g_visits.clear();
        EXPECT_EQ(row.result, OSTreeNodeEnum(row.start, row.stepper, Visit, row.stopAt));
        EXPECT_EQ(row.visits, g_visits) << row.stopAt;
    }
    g_visits.clear();
    EXPECT_EQ(1, OSTreeNodeEnum(N(0), nullptr, VisitAndFree, 0));
    EXPECT_EQ((std::vector<int>{1, 3, 4, 2, 0, 6, 5}), g_visits);
    EXPECT_EQ(0, OSTreeNodeEnum(N(0), nullptr, nullptr, 0));
    EXPECT_EQ(RV_BadParms, OSErrorGetErrorValue());
}

}  // namespace
