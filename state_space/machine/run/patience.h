#pragma once

#include <thread>

namespace Calder::StateSpace {

/// For a thread that waits until another one has written a few words: it looks again at once, and lets others
/// run now and then, as the other one may have lost its processor.
class Patience {
  public:
    void wait() noexcept {
        if (++m_waits % 16 == 0) {
            std::this_thread::yield();
        }
    }

  private:
    unsigned m_waits = 0;
};

} // namespace Calder::StateSpace
