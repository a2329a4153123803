#include <base/iterator.h>
#include <base/iteratorEmpty.h>
#include <base/iteratorVector.h>

#include <gtest/gtest.h>

namespace {

template <class F>
void expectOutOfRange(F&& f, const std::string& path, int line) {
    try {
        f();
        FAIL() << "no exception";
    } catch (const IteratorEx::ExOutOfRange& ex) {
        EXPECT_EQ(ex.getPath(), path);
        EXPECT_EQ(ex.getLine(), line);
    }
}

TEST(IteratorEmpty, IsAtBothEndsAndRefusesToMove) {
    Iterator<int> it(RCShdPtr<IteratorImp<int>>(new IteratorEmpty<int>));
    EXPECT_TRUE(it.atBegin());
    EXPECT_TRUE(it.atEnd());
    EXPECT_EQ(it.getCardinality(), 0);
    it.first();
    it.last();
    it.end();
    expectOutOfRange([&] { ++it; }, "base/containers/src/iteratorEmpty.imp", 102);
    expectOutOfRange([&] { --it; }, "base/containers/src/iteratorEmpty.imp", 110);
    expectOutOfRange([&] { (void)*it; }, "base/containers/src/iteratorEmpty", 106);
    const Iterator<int>& constIt = it;
    expectOutOfRange([&] { (void)constIt.item(); }, "base/containers/src/iteratorEmpty", 113);

    Iterator<int> copy = it; // a clone, equal to the original
    EXPECT_TRUE(copy == it);
    Iterator<int> other(RCShdPtr<IteratorImp<int>>(new IteratorVector<int>({})));
    EXPECT_FALSE(it == other);
}

TEST(IteratorVector, WalksItsItemsBothWays) {
    Iterator<int> it(RCShdPtr<IteratorImp<int>>(new IteratorVector<int>({3, 5, 8})));
    EXPECT_EQ(it.getCardinality(), 3);
    std::vector<int> seen;
    for (it.first(); !it.atEnd(); ++it) {
        seen.push_back(*it);
    }
    EXPECT_EQ(seen, (std::vector<int>{3, 5, 8}));
    it.last();
    --it;
    EXPECT_EQ(*it, 5);
    Iterator<int> copy = it;
    ++copy; // copies move independently
    EXPECT_EQ(*it, 5);
    EXPECT_EQ(*copy, 8);
}

} // namespace
