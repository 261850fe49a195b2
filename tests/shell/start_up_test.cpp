#include "shell/console_rig.h"

namespace ecu::test {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;

class StartUpTest : public ConsoleRig {
protected:
    void expect_end(const std::string& file) {
        desktop.expect_box(file + " in the folder " + desktop.folder().string());
        try {
            start_up();
            FAIL() << "started without " << file;
        } catch (const ProgramEnded& ended) {
            EXPECT_EQ(ended.status, 1);
        }
        EXPECT_THAT(desktop.boxes().back().text, HasSubstr("start again"));
    }
    void remove(const char* file) { std::filesystem::remove(desktop.folder() / file); }
};

TEST_F(StartUpTest, TakesOverTheFilesOfTheFolder) {
    desktop.write_file("debug.ini", "");
    desktop.write_file("lambda.txt", "\xEF\xBB\xBF\r\n3");
    state.link_title_suffix = "left over";
    start_up();
    EXPECT_EQ(state.comm_port_number, 3);
    EXPECT_TRUE(main.menu_comm_3.checked());
    EXPECT_EQ(main.form.caption(), "ECU System Console [Master Mode]");
    EXPECT_EQ(state.link_title_suffix, "");
    EXPECT_EQ(forms.frm_dashboard.Picture1.image_path(), desktop.path("OEM.JPG"));
    EXPECT_EQ(forms.frm_about.oemtext.text(), "Made for racing.\r\nCall us.");
    EXPECT_EQ(forms.frm_about.ECU_Rev.text(), "V1.02.00 02/12/10");
    EXPECT_EQ(scales.lambda_scale, 9.675F);
    EXPECT_EQ(scales.full_scale_rpm, 10000);
    EXPECT_EQ(main.menu_comm_3.text(), "COM &3  (/dev/sim3)");
}

TEST_F(StartUpTest, DemoIsSaidAndHasNoPortItemWhenTheNumberIsSenseless) {
    desktop.write_file("port.cfg", "11");
    desktop.expect_box("Demo Mode has been selected, Communicatons will not be performed.");
    start_up("DEMO");
    EXPECT_TRUE(state.demo_mode);
    for (const platform::MenuItem* item : main.ports) {
        EXPECT_FALSE(item->checked());
    }
    EXPECT_EQ(main.form.caption(), "ECU System Console");
}

TEST_F(StartUpTest, AMissingFileEndsTheProgram) {
    for (const char* file : {"OEM.TXT", "OEM.JPG", "port.cfg"}) {
        remove(file);
        expect_end(file);
    }
}

TEST_F(StartUpTest, APictureThatIsNoneIsToldAndLeftOut) {
    std::string half_frame(tiny_jpeg);
    half_frame[5] = 8; // its length
    for (const auto& broken : {std::string("<html>"), "\xFF\xD8\xFF" + std::string(40, '!'), half_frame,
                               std::string(tiny_jpeg.substr(0, tiny_jpeg.size() - 1))}) {
        desktop.write_file("OEM.JPG", broken);
        desktop.expect_box("OEM.JPG in the folder");
        start_up();
        EXPECT_EQ(main.Picture1.image_path(), "");
    }
    EXPECT_EQ(forms.frm_about.ECU_Rev.text(), "V1.02.00 02/12/10");
}

TEST_F(StartUpTest, TextIsReadByItsEncoding) {
    const std::vector<std::pair<std::string, std::string>> texts{
        {"caf\xE9", "caf\xC3\xA9"},
        {"caf\xC3\xA9", "caf\xC3\xA9"},
        {"\xEF\xBB\xBFx", "x"},
        {"\xC0\xAF", "\xC3\x80\xC2\xAF"},
        {"\xE2\x82", "\xC3\xA2\xC2\x82"},
        {"", ""},
        {"\xFF\xFEx\0\xAC\x20\x3D\xD8\x97\xDEy"s, "x\xE2\x82\xAC\xF0\x9F\x9A\x97"}, // a last half is dropped
        {"\xFE\xFF\xD8\x3D\0x"s, "\xEF\xBF\xBDx"}};
    for (const auto& [file, shown] : texts) {
        desktop.write_file("OEM.TXT", file);
        start_up();
        EXPECT_EQ(forms.frm_about.oemtext.text(), shown);
    }
}

TEST_F(StartUpTest, LambdaFileCases) {
    struct Case {
        const char* text;
        int item;
        float scale;
    };
    for (const Case& c : {Case{"0", 0, 1.0F}, Case{"1\r\n", 1, 14.7F}, Case{"2", 2, 9.0F}, Case{"4", 4, 6.4F},
                          Case{"", 0, 1.0F}, Case{"gas", 0, 1.0F}, Case{"5", -1, 1.0F}, Case{"-1", -1, 1.0F}}) {
        desktop.write_file("lambda.txt", c.text);
        start_up();
        EXPECT_EQ(scales.lambda_scale, c.scale) << c.text;
        EXPECT_EQ(scales.shows_lambda, c.item == 0) << c.text;
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(main.menuUnitsLambda[static_cast<std::size_t>(i)].checked(), i == c.item) << c.text;
        }
        EXPECT_EQ(desktop.read_file("lambda.txt"), c.text) << "not written before the window was active";
    }
    remove("lambda.txt");
    start_up();
    EXPECT_EQ(desktop.read_file("lambda.txt"), "0\n");
    EXPECT_TRUE(scales.shows_lambda);
    remove("lambda.txt");
    std::filesystem::create_directory(desktop.folder() / "lambda.txt");
    desktop.expect_box("lambda.txt in the folder " + desktop.folder().string() + " cannot be read.");
    start_up();
}

TEST_F(StartUpTest, AChoiceOfUnitsIsKeptOnceTheWindowIsActive) {
    start();
    main.menuUnitsLambda[4].click();
    main.menuUnitsPressure[1].click();
    EXPECT_EQ(desktop.read_file("lambda.txt"), "4\n");
    EXPECT_FLOAT_EQ(scales.lambda_to_display(1.5F), 9.6F);
    EXPECT_FLOAT_EQ(scales.lambda_from_display(9.6F), 1.5F);
    EXPECT_FALSE(main.menuUnitsLambda[0].checked());
    EXPECT_TRUE(main.menuUnitsPressure[1].checked());
    EXPECT_FALSE(main.menuUnitsPressure[0].checked());
}

} // namespace
} // namespace ecu::test
