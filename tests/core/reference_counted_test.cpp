#include "core/panic.h"
#include "core/reference_counted.h"

#include <boost/intrusive_ptr.hpp>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace Calder {
namespace {

class Node : public AtomicReferenceCounted {
  public:
    explicit Node(int& count, boost::intrusive_ptr<Node> first = {},
                  boost::intrusive_ptr<Node> second = {})
        : m_count(count), m_first(std::move(first)), m_second(std::move(second)) {
        ++m_count;
    }
    ~Node() override { --m_count; }

  private:
    int& m_count;
    boost::intrusive_ptr<Node> m_first, m_second;
};

using NodePointer = boost::intrusive_ptr<Node>;

TEST(ReferenceCounted, the_last_pointer_destroys) {
    int alive = 0;
    NodePointer first(new Node(alive));
    NodePointer second = first;
    EXPECT_EQ(first->reference_count(), 2U);
    first.reset();
    EXPECT_EQ(alive, 1);
    second.reset();
    EXPECT_EQ(alive, 0);
}

TEST(ReferenceCounted, a_chain_of_a_million_is_freed_on_the_default_stack) {
    int alive = 0;
    NodePointer chain;
    for (int length = 0; length < 1'000'000; ++length) {
        chain = new Node(alive, std::move(chain));
    }
    EXPECT_EQ(alive, 1'000'000);
    chain.reset();
    EXPECT_EQ(alive, 0);
}

TEST(ReferenceCounted, a_shared_part_lives_until_its_last_owner_goes) {
    int alive = 0;
    NodePointer const shared(new Node(alive));
    NodePointer tree(new Node(alive, new Node(alive, shared, shared), new Node(alive, shared)));
    EXPECT_EQ(alive, 4);
    tree.reset();
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(shared->reference_count(), 1U);
}

TEST(ReferenceCounted, threads_may_share) {
    int alive = 0;
    NodePointer shared(new Node(alive));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([shared] {
            for (int round = 0; round < 10'000; ++round) {
                NodePointer const mine = shared;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    threads.clear();
    EXPECT_EQ(shared->reference_count(), 1U);
    shared.reset();
    EXPECT_EQ(alive, 0);
}

TEST(PanicDeathTest, says_its_message_and_aborts) {
    EXPECT_EXIT(panic("something was misused"), testing::KilledBySignal(SIGABRT),
                "^something was misused\n");
}

} // namespace
} // namespace Calder
