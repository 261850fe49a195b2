#include "cli/reports.h"

#include <gmock/gmock.h>

namespace ecu::cli {
namespace {

using namespace calibration;

std::string compared(std::string_view a, std::string_view b) {
    const Snapshot left = values_of(a);
    const Snapshot right = values_of(b);
    return as_text(compare(left, right), left, right, "a.set", "b.set");
}

TEST(Compare, CountsChangedMissingAndUnknownKeysApartWithEngineeringValuesAndPlaces) {
    EXPECT_EQ(compared("ACC_RATE= 12\nMAPM[017]=66\nCLTM[003]=64\nSUPM[003]=5\nHOT_#P  = 1\n",
                       "ACC_RATE= 13\nMAPM[017]=67\nCLTM[003]=65\nSTUT[002]= 7\n"),
              "changed  ACC_RATE   12 (1.12) -> 13 (1.21)   Filter Rate, V/s\n"
              "changed  MAPM[017]  row 15, column 2  66 (.516) -> 67 (.523)\n"
              "changed  CLTM[003]  cell 4            64 (1.000) -> 65 (1.016)\n"
              "missing  HOT_#P     in b.set\n"
              "missing  STUT[002]  in a.set\n"
              "unknown  SUPM[003]  in a.set, line 4\n"
              "3 changed, 2 missing, 1 unknown\n");
}

TEST(Compare, ShowsEachSideByItsOwnSensor) {
    EXPECT_EQ(compared("MAP_TYPE= 0\nMAX_MAP = 1023\n", "MAP_TYPE= 2\nMAX_MAP = 1022\n"),
              "changed  MAP_TYPE   0 -> 2   MAP Sensor\n"
              "changed  MAX_MAP    1023 (125.0) -> 1022 (629.5)   Maximum Pressure, kPa\n"
              "2 changed, 0 missing, 0 unknown\n");
}

TEST(Compare, TakesBoostGainsFromBehindTheirSecondSign) {
    EXPECT_EQ(compared("BO_P[000]= = 4096\n", "BO_P[000]= = 0\n"),
              "changed  BO_P[000]  4096 (1.000) -> 0 (0.000)   Boost P\n1 changed, 0 missing, 0 unknown\n");
}

TEST(Compare, CallsFilesTheSameWhoseUnknownKeysAreTheSame) {
    const Snapshot a = values_of("ABCD[003]=5\nACC_RATE= 12\n");
    const Snapshot b = values_of("ACC_RATE= 11\nACC_RATE= 12\nABCD[003]=6\n");
    EXPECT_TRUE(compare(a, b).same);
    EXPECT_FALSE(compare(a, values_of("ACC_RATE= 12\n")).same);
}

TEST(Compare, GoesOnPastLinesThatAnUploadWouldStopAt) {
    EXPECT_EQ(
        compared("MAPM[007]=-1\nACC_RATE= 12\n", "MAPM[007]=1\nACC_RATE= 13\n"),
        "changed  ACC_RATE   12 (1.12) -> 13 (1.21)   Filter Rate, V/s\n"
        "unreadable MAPM[007] in a.set, line 1: -1: the value is negative, which this item's message cannot carry\n"
        "1 changed, 0 missing, 0 unknown, 1 unreadable\n");
}

} // namespace
} // namespace ecu::cli
