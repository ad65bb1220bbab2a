#include "dom/element_node_filter.h"

#include "tests/support/xml_text.h"

namespace marrowpress {
namespace {

TEST(FilterActionTest, HasTheValuesOfTheEngine) {
    EXPECT_EQ(static_cast<int>(xercesc::DOMNodeFilter::FILTER_ACCEPT), 1);
    EXPECT_EQ(static_cast<int>(xercesc::DOMNodeFilter::FILTER_REJECT), 2);
    EXPECT_EQ(static_cast<int>(xercesc::DOMNodeFilter::FILTER_SKIP), 3);
}

}  // namespace
}  // namespace marrowpress
