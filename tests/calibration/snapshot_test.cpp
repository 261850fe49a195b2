#include "calibration/compare.h"

#include <gtest/gtest.h>

namespace ecu::calibration {
namespace {

TEST(Snapshot, OfTheControllerHoldsWhatItsRepliesBroughtAndNothingElse) {
    Scales scales;
    CalibrationImage image(scales);
    EXPECT_EQ(values_of(image).size(), 0U) << "what no reply has brought is no 0";
    image.store(parameter("ACC_RATE"), 0, 12);
    image.store(parameter("STUT"), 7, 3);
    image.store_cell(table("MAPM").base + 17, 66);
    const Snapshot read = values_of(image);
    EXPECT_EQ(read.size(), 3U);
    const Comparison same = compare(read, values_of("ACC_RATE= 12\nSTUT[007]= 3\nMAPM[017]=66\n"));
    EXPECT_TRUE(same.same);
    const Comparison other = compare(read, values_of("ACC_RATE= 13\nSTUT[007]= 3\nMAPM[016]=66\n"));
    EXPECT_EQ(other.changed.size(), 1U);
    EXPECT_EQ(other.missing.size(), 2U) << "one on either side";
}

} // namespace
} // namespace ecu::calibration
