#include "calibration/file_check.h"

#include <gmock/gmock.h>

namespace ecu::calibration {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// "line key: text" of every finding.
std::vector<std::string> findings(std::string_view text) {
    std::vector<std::string> out;
    for (const Finding& finding : check(text).findings) {
        out.push_back(std::to_string(finding.line) + " " + finding.key + ": " + finding.text);
    }
    return out;
}

TEST(Check, HoldsEveryValueAgainstTheRangesOfItsRow) {
    EXPECT_THAT(findings("ACC_RATE= 4095\r\nTDC_TRIM= 255\r\nEGO_A_LO= 39\r\nTMP_THRS= 243\r\nINJO[000]=-25000\r\n"
                         "PHBT[000]= 2879\r\nMAPM[000]=255\r\nGGPO[007]= 3\r\nIDL_DRPM= 65534\r\n"),
                IsEmpty());
    EXPECT_THAT(findings("ACC_RATE= 0\n"), ElementsAre("1 ACC_RATE: 0 (0.00) is outside 1 (0.09) to 4095 (381.50)"));
    EXPECT_THAT(findings("EGO_A_LO= 38\n"), ElementsAre("1 EGO_A_LO: 38 (.594) is outside 39 (.609) to 255 (3.984)"));
    EXPECT_THAT(findings("TMP_THRS= 200\n"), ElementsAre("1 TMP_THRS: 200 stands for -56, outside -13 to 127"));
    EXPECT_THAT(findings("EGO_RATE= 300\n"),
                ElementsAre("1 EGO_RATE: 300 does not fit the item's 8 bits; an upload would send 44"));
    EXPECT_THAT(findings("INJO[000]=40000\n"),
                ElementsAre("1 INJO[000]: 40000 does not fit the item's 16 bits; an upload would send 40000"));
    EXPECT_THAT(findings("PHBT[000]= 2880\n"),
                ElementsAre("1 PHBT[000]: 2880 (720.00) is a value that the console's screens refuse"));
    EXPECT_THAT(findings("GPO1[003]=256\n"),
                ElementsAre("1 GPO1[003]: 256 does not fit the item's 8 bits; an upload would send 0"));
    EXPECT_THAT(findings("INJP[003]= 511\nBO_P[000]= = 70000\n"),
                ElementsAre("1 INJP[003]: 511 does not fit the item's 8 bits; an upload would send 511, its high byte "
                            "along",
                            "2 BO_P[000]: 70000 does not fit the item's 16 bits; an upload would send 0"));
    // The sensor that a later line names is the one by which the pressure is shown.
    EXPECT_THAT(findings("MIN_PRES= 1024\nMAP_TYPE= 2\n"),
                ElementsAre("1 MIN_PRES: 1024 (630.5) is outside 0 (79.0) to 1023 (630.0)"));
}

TEST(Check, NamesTheLinesThatAnUploadWouldMisread) {
    EXPECT_THAT(findings("SET_REV = 10000\n\nMAPM[007]=256\nSUPM[003]=5\nMAPM[008]=1x\nMAPM[009]=\nMAPM[008]=2\n"),
                ElementsAre("2 : the line is blank; an upload would stop here",
                            "3 MAPM[007]: 256: the value is above 255, the most that this item's message can carry; an "
                            "upload would stop here",
                            "4 SUPM[003]: is not known; an upload would pass over it",
                            "5 MAPM[008]: \"1x\" is not a whole number; an upload would send 1",
                            "6 MAPM[009]: has no value; an upload would send 0",
                            "7 MAPM[008]: stands in line 5 already; the later value holds"));
}

TEST(Check, NotesWhatAnUploadLosesWithoutCallingItAFault) {
    const CheckReport report = check("BO_P[000]= = 4096\nBO_P[001]= = 0");
    EXPECT_THAT(report.findings, IsEmpty());
    EXPECT_THAT(report.notes, ElementsAre(testing::HasSubstr("2121 of 2123 values"), testing::HasSubstr("1 BO_P value"),
                                          testing::HasSubstr("no line end")));
}

} // namespace
} // namespace ecu::calibration
