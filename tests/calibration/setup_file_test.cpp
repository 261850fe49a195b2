#include "calibration/setup_file.h"

#include <gmock/gmock.h>

namespace ecu::calibration {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// What a line leads to as one text: "103 44 1 0 >5", "skipped", the unknown texts joined by "|", or "stops: ...".
std::string meaning(std::string_view line) {
    struct Teller {
        std::string operator()(const SkippedLine&) const { return "skipped"; }
        std::string operator()(const LineMessage& known) const {
            std::string text;
            for (const std::uint8_t byte : known.message) {
                text += std::to_string(byte) + " ";
            }
            return text + ">" + std::to_string(known.reply);
        }
        std::string operator()(const UnknownLine& unknown) const {
            std::string text;
            for (const std::string& shown : unknown.texts) {
                text += (text.empty() ? "" : "|") + shown;
            }
            return text;
        }
        std::string operator()(const LineStop& stop) const { return "stops: " + stop.key + "=" + stop.value; }
    };
    return std::visit(Teller{}, read_line(line));
}

TEST(SetupFileText, PutsEveryFormsValueWhereReadersOfTheFormatLookForIt) {
    EXPECT_THAT(header_lines("V1.02.00 02/12/10", 10200),
                ElementsAre("SET_REV = 10000\r\n", "SW_REV  = V1.02.00 02/12/10\r\n", "FW_REV  = 10200\r\n"));
    EXPECT_EQ(file_line(parameter("ACC_RATE"), 0, 12), "ACC_RATE= 12\r\n");
    EXPECT_EQ(file_line(parameter("HOT_#P"), 0, 0), "HOT_#P  = 0\r\n");
    EXPECT_EQ(file_line(parameter("TMP_THRS"), 0, 1200), "TMP_THRS= 1200\r\n"); // masks never cut
    EXPECT_EQ(file_line(parameter("INJP"), 15, 255), "INJP[015]= 255\r\n");
    EXPECT_EQ(file_line(parameter("BO_P"), 3, 4096), "BO_P[003]= = 4096\r\n");
    EXPECT_EQ(file_line(parameter("INJO"), 7, -250), "INJO[007]=-250\r\n");
    EXPECT_EQ(file_line(table("MAPM"), 255, 66), "MAPM[255]=66\r\n");
    EXPECT_EQ(file_line(parameter("map_change_time"), 0, 5), "");
}

TEST(SetupFileReader, SendsEachFormOfItemAsItsOwnMessage) {
    EXPECT_EQ(meaning("ACC_SEN = 300"), "103 44 1 0 >5");
    EXPECT_EQ(meaning("EGO_RATE= 300"), "99 44 0 0 >4"); // a byte drops the high part
    EXPECT_EQ(meaning("ACC_MAXP= 65535"), "32 255 255 0 >5");
    EXPECT_EQ(meaning("INJP[003]= 511"), "128 3 255 1 >5"); // the high part goes along
    EXPECT_EQ(meaning("PHBT[015]= 2879"), "156 15 63 11 >6");
    EXPECT_EQ(meaning("GGPO[007]= 259"), "39 7 3 0 >5");
    EXPECT_EQ(meaning("INJO[000]=-1"), "205 0 255 255 >6");
    EXPECT_EQ(meaning("INJK[001]=4096"), "204 1 0 16 >6");
    EXPECT_EQ(meaning("MAPM[007]=12"), "101 7 1 12 >6");
    EXPECT_EQ(meaning("BMP3[080]=255"), "101 176 10 255 >6"); // 2656 + 80
    EXPECT_EQ(meaning("GPO4[080]=257"), "101 80 4 1 >6");     // 1024 + 80; masked
    EXPECT_EQ(meaning("DWEL[008]=256"), "101 136 4 0 >6");    // 1152 + 8; masked
    EXPECT_EQ(meaning("EGO_A_LO= 39"), "60 39 0 0 >5");       // awaits more than the controller answers
    EXPECT_EQ(meaning("EGO_A_HI= 90"), "62 90 0 0 >5");
}

TEST(SetupFileReader, TakesTheValueFromColumnElevenAndNoOther) {
    EXPECT_EQ(meaning("MAPM[007]= 12"), meaning("MAPM[007]=12"));
    EXPECT_EQ(meaning("MAPM[007]=   1 2 cells"), meaning("MAPM[007]=12"));
    EXPECT_EQ(meaning("BO_P[002]= = 4096"), "218 2 0 0 >6"); // the second "=" is where the number should be
    EXPECT_EQ(meaning("BO_P[002]=  4096"), "218 2 0 16 >6");
    EXPECT_EQ(meaning("ACC_RATE=31"), "102 1 0 0 >5");   // no "=" is searched for
    EXPECT_EQ(meaning("MAPM[007]=2.5"), "101 7 1 2 >6"); // ties to even
    EXPECT_EQ(meaning("MAPM[007]=3.5"), "101 7 1 4 >6");
    EXPECT_EQ(meaning("MAPM[ 7x]=12"), "101 7 1 12 >6");
    EXPECT_EQ(meaning("MAPM["), "101 0 1 0 >6"); // five characters are a line, with index and value 0
}

TEST(SetupFileReader, PassesOverHeadersAndKeysWithoutTheirIndex) {
    for (const char* line :
         {"SET_REV = 9", "SW_REV  = V1.02.00 02/12/10", "FW_REV  = 10200", "MAPM    = 5", "SUPM    ="}) {
        EXPECT_EQ(meaning(line), "skipped") << line;
    }
}

TEST(SetupFileReader, NamesWhatItDoesNotKnowAndNeverReachesOutsideAKeysElements) {
    const std::string unknown = "Unknown variable in data set file -->";
    EXPECT_EQ(meaning("SUPM[003]=5"), unknown + "SUPM[003]");
    EXPECT_EQ(meaning("ABCD[003]=5"), unknown + "ABCD[003]|" + unknown + "ABCD");
    EXPECT_EQ(meaning("ABCDEFGHIJ12"), unknown + "ABCDEFGH");
    EXPECT_EQ(meaning("MAPM[256]=5"), unknown + "MAPM[256]");
    EXPECT_EQ(meaning("CLTM[-01]=5"), unknown + "CLTM[-01]");
    EXPECT_EQ(meaning("GPOS[004]= 1"), unknown + "GPOS[004]");
    EXPECT_EQ(meaning("acc_sen = 300"), unknown + "acc_sen");
}

TEST(SetupFileReader, StopsAtWhatNoMessageCanCarry) {
    EXPECT_EQ(meaning("MAPM[007]=256"), "stops: MAPM[007]=256");
    EXPECT_EQ(meaning("ACC_SEN = 65536"), "stops: ACC_SEN=65536");
    EXPECT_EQ(meaning("IGNP[000]= 65536"), "stops: IGNP[000]=65536");
    EXPECT_EQ(meaning("EGO_A_LO= 65536"), "stops: EGO_A_LO=65536");
    for (const char* line : {"ACC_SEN = -1", "EGO_RATE= -1", "GPOS[000]= -1", "GPO1[000]=-1", "INJK[000]=-1"}) {
        EXPECT_THAT(meaning(line), HasSubstr("=-1")) << line;
    }
    EXPECT_EQ(meaning("ACC_SEN = -0.4"), "103 0 0 0 >5");
    EXPECT_EQ(meaning("INJO[000]=-65537"), "stops: INJO[000]=-65537");
    EXPECT_EQ(meaning("EGO_RATE= 3e9"), "stops: EGO_RATE=3e9");
    EXPECT_EQ(meaning("ABCD"), "stops: ABCD=");
    EXPECT_EQ(meaning(""), "stops: =");
}

TEST(SetupFileText, HasALinePerLineEndOfEitherKindAndOneForAnUnendedRest) {
    EXPECT_THAT(split_lines("a\r\nb\n\nc"), ElementsAre("a", "b", "", "c"));
    EXPECT_THAT(split_lines("a\r\n"), ElementsAre("a"));
    EXPECT_THAT(split_lines(""), ElementsAre());
}

} // namespace
} // namespace ecu::calibration
