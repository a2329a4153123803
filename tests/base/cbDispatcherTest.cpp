#include <base/cbDataMethod.h>
#include <base/cbDispatcher.h>
#include <base/cbMethod.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace {

// A handler that records the calls it receives and can run an action inside
// its callback (to exercise changes of the handler list during a call).
struct Recorder : CbHandler<const int> {
    explicit Recorder(std::vector<int>& log, int id)
        : log(log)
        , id(id) {}
    void callback(const int& value) override {
        log.push_back(id * 100 + value);
        if (action) {
            action();
        }
    }
    std::vector<int>& log;
    int id;
    std::function<void()> action;
};

TEST(CbDispatcher, HandlerRemovedDuringCallIsNotCalledAfterwards) {
    std::vector<int> log;
    CbDispatcher<const int> d;
    Recorder a(log, 1), b(log, 2), c(log, 3);
    d.addHandler(&a);
    d.addHandler(&b);
    d.addHandler(&c);
    a.action = [&] { d.removeHandler(&b); }; // another
    c.action = [&] { d.removeHandler(&c); }; // itself
    const int value = 1;
    d.call(value);
    EXPECT_EQ(log, (std::vector<int>{101, 301}));
    EXPECT_FALSE(c.isConnected());
    EXPECT_FALSE(b.isConnected());
    log.clear();
    d.call(value);
    EXPECT_EQ(log, (std::vector<int>{101}));
}

TEST(CbDispatcher, HandlerAddedDuringCallWaitsForTheNextCall) {
    std::vector<int> log;
    CbDispatcher<const int> d;
    Recorder a(log, 1), late(log, 2);
    d.addHandler(&a);
    a.action = [&] { d.addHandler(&late); };
    const int value = 5;
    d.call(value);
    EXPECT_EQ(log, (std::vector<int>{105}));
    a.action = nullptr;
    d.call(value);
    EXPECT_EQ(log, (std::vector<int>{105, 105, 205}));
}

TEST(CbDispatcher, DestroyingEitherSideUnlinksTheOther) {
    std::vector<int> log;
    Recorder a(log, 1);
    auto d1 = std::make_unique<CbDispatcher<const int>>();
    CbDispatcher<const int> d2;
    d1->addHandler(&a);
    d2.addHandler(&a);
    d1.reset();
    ASSERT_EQ(a.getDispatchers().size(), 1u);
    EXPECT_EQ(a.getDispatchers()[0], &d2);
    {
        Recorder b(log, 2);
        d2.addHandler(&b);
        EXPECT_EQ(d2.size(), 2u);
    }
    EXPECT_EQ(d2.size(), 1u);
    a.reset();
    EXPECT_EQ(d2.size(), 0u);
    EXPECT_FALSE(a.isConnected());
}

struct Owner {
    void onEmpty() { ++empties; }
    void onParam(const int& datum) { data.push_back(datum); }
    void onEvent(const int& payload, const int& datum) { data.push_back(payload * 10 + datum); }
    int empties = 0;
    std::vector<int> data;
};

} // namespace
