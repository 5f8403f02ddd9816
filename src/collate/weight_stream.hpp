// The comparison of two strings given as steps of one weight each.
#pragma once

#include "locale/text.hpp"

namespace velnls {

// `Steps` has more(), take() and rest(), the text behind the steps begun so far. A second step that is still
// pending keeps its string going while the other one goes on; when the other has ended, it is dropped.
template <typename Steps>
int compareSteps(Steps a, Steps b) {
    while (a.more() && b.more()) {
        const auto stepA = a.take();
        const auto stepB = b.take();
        if (stepA != stepB)
            return stepA < stepB ? -1 : 1;
    }
    return compareRests(a.rest(), b.rest());
}

} // namespace velnls
