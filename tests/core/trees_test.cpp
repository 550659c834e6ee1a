// Trees of caller-owned records: each insert and remove checked link by link,
// the rules that leave links as they are on purpose, the walk, and a long
// random run against a model of the tree.
#include <algorithm>
#include <random>
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

// The model: ordered children of each node, with -1 for the top level, and
// each node's parent (-1 top level, -2 out of the tree).
struct Model {
    explicit Model(int n) : kids(n + 1), parent(n, -2) {}
    std::vector<int> &Kids(int p) { return kids[p + 1]; }
    bool InTree(int i) const
    {
        while (parent[i] >= 0)
            i = parent[i];
        return parent[i] == -1;
    }
    void Unlink(int i)
    {
        auto &list = Kids(parent[i]);
        list.erase(std::find(list.begin(), list.end(), i));
        parent[i] = -2;
    }
    void Link(int i, int p, size_t at)
    {
        Kids(p).insert(Kids(p).begin() + at, i);
        parent[i] = p;
    }
    size_t Index(int i) { auto &l = Kids(parent[i]); return std::find(l.begin(), l.end(), i) - l.begin(); }
    std::vector<std::vector<int>> kids;
    std::vector<int> parent;
};

TEST_F(Trees, RandomRunKeepsTheLinksOfTheModel)
{
    const int kNodes = 300;
    const int kOperations = sizeof(void *) == 4 ? 20000 : 100000;
    std::vector<TreeNode> nodes(kNodes);
    Model model(kNodes);
    auto at = [&](int i) { return i < 0 ? nullptr : &nodes[i]; };
    auto idOf = [&](TreeNode *n) { return n ? static_cast<int>(n - nodes.data()) : -1; };
    auto check = [&](int i) {
        if (model.parent[i] == -2)
            return;   // an out-of-tree top keeps only its child link, checked below
        const auto &sibs = model.Kids(model.parent[i]);
        const size_t k = model.Index(i);
        ASSERT_EQ(k ? sibs[k - 1] : -1, idOf(nodes[i].prev)) << i;
        ASSERT_EQ(k + 1 < sibs.size() ? sibs[k + 1] : -1, idOf(nodes[i].next)) << i;
        ASSERT_EQ(model.parent[i] >= 0 ? model.parent[i] : -1, idOf(nodes[i].parent)) << i;
    };
    auto checkAll = [&]() {
        const auto &top = model.Kids(-1);
        ASSERT_EQ(top.empty() ? -1 : top[0], idOf(root));
        for (int i = 0; i < kNodes; ++i) {
            check(i);
            const auto &kids = model.Kids(i);
            ASSERT_EQ(kids.empty() ? -1 : kids[0], idOf(nodes[i].child)) << i;
        }
    };
    std::mt19937 rng(15);
    auto pick = [&](bool inTree) {
        for (;;) {
            int i = static_cast<int>(rng() % kNodes);
            if (inTree ? model.InTree(i) : model.parent[i] == -2)
                return i;
        }
    };
    int counts[6] = {};
    for (int op = 0; op < kOperations; ++op) {
        const bool empty = model.Kids(-1).empty();
        int kind = static_cast<int>(rng() % 6);
        if (kind == 5 && empty)
            kind = 0;
        if (std::count(model.parent.begin(), model.parent.end(), -2) == 0)
            kind = 5;   // every record is in: something must come out first
        const bool useNull = rng() % 4 == 0;
        if (kind == 5) {   // remove, except a root with a next sibling
            const int i = pick(true);
            if (model.parent[i] == -1 && model.Index(i) == 0 && model.Kids(-1).size() > 1)
                continue;
            ASSERT_EQ(1, OSTreeRemoveNode(&root, at(i)));
            const int p = model.parent[i];
            const size_t k = model.Index(i);
            model.Unlink(i);
            if (k < model.Kids(p).size())
                check(model.Kids(p)[k]);
            if (k > 0)
                check(model.Kids(p)[k - 1]);
            ++counts[5];
            continue;
        }
        int node = pick(false);
        if (empty) {
            ASSERT_EQ(1, kInserts[kind % 4](&root, nullptr, at(node)));
            model.Link(node, -1, 0);
            check(node);
            continue;
        }
        int ref = useNull ? -1 : pick(true);
        int effective = ref < 0 ? model.Kids(-1)[0] : ref;
        switch (kind) {
        case 0:
        case 4:
            if (kind == 4 && ref < 0)
                effective = model.Kids(-1).back();
            ASSERT_EQ(1, (kind == 0 ? OSTreeInsertBeforeNode : OSTreeInsertAfterNode)(
                             &root, at(ref), at(node)));
            model.Link(node, model.parent[effective], model.Index(effective) + (kind == 4));
            check(effective);
            break;
        case 1:   // above a reference that stands alone, with a record that has no children
            if (model.Kids(model.parent[effective]).size() != 1 || !model.Kids(node).empty())
                continue;
            ASSERT_EQ(1, OSTreeInsertAboveNode(&root, at(ref), at(node)));
            {
                const int p = model.parent[effective];
                model.Unlink(effective);
                model.Link(node, p, 0);
                model.Link(effective, node, 0);
            }
            check(effective);
            break;
        default:   // below a reference that has no child yet
            if (ref < 0)
                while (!model.Kids(effective).empty())
                    effective = model.Kids(effective)[0];
            if (!model.Kids(effective).empty())
                continue;
            ASSERT_EQ(1, OSTreeInsertBelowNode(&root, at(ref), at(node)));
            model.Link(node, effective, 0);
            break;
        }
        ++counts[kind];
        check(node);
        if (op % 500 == 0)
            checkAll();
    }
    checkAll();
    for (int kind = 0; kind < 6; ++kind)
        EXPECT_GT(counts[kind], kOperations / 100) << "operation " << kind << " ran too seldom";
    EXPECT_EQ(RV_Success, OSErrorGetErrorValue());
}

}  // namespace
