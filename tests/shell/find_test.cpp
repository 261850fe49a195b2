#include "shell/find.h"

#include <gmock/gmock.h>

namespace ecu::shell {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Find, PutsWhatIsCalledSoBeforeWhatOnlyMentionsIt) {
    const std::vector<Findable> items{
        {"Sensitivity", "Configuration > Acceleration Enrichments > Throttle Movement", "Injector time per volt"},
        {"Lambda target table", "Additional Map > Lambda Targets", ""},
        {"Feedback", "Dashboard", "Switches the lambda correction off; the target stays"},
        {"Port 10 °C", "Menu > Comm", ""},
        {"Report", "Menu > Tools", ""},
        {"Port", "Menu > Comm", ""}};
    const auto found = [&](std::string_view query) { return find_items(items, query, 10); };
    EXPECT_THAT(found("accel"), ElementsAre(0));
    EXPECT_THAT(found("lambda TARGET"), ElementsAre(1, 2));
    EXPECT_THAT(found("target, lambda"), ElementsAre(1, 2));
    EXPECT_THAT(found("port"), ElementsAre(3, 5, 4)) << "the beginning of a word, then the inside of one";
    EXPECT_THAT(found("port°"), IsEmpty());
    EXPECT_THAT(found("comm port"), ElementsAre(3, 5));
    EXPECT_THAT(found("lambda nothing"), IsEmpty());
    EXPECT_THAT(found(" .. "), IsEmpty());
    EXPECT_THAT(find_items(items, "m", 2), testing::SizeIs(2));
}

} // namespace
} // namespace ecu::shell
