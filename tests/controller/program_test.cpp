// The parts of the program ecu-controller: its options, its files, and a real pseudo-terminal.
#include "console_end.h"
#include "controller/device_link.h"
#include "controller/options.h"
#include "controller/pty_server.h"
#include "controller/state_file.h"

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace ecu::controller {
namespace {

using testing::HasSubstr;
namespace fs = std::filesystem;

class Program : public testing::Test {
protected:
    Program() { fs::create_directories(folder); }
    ~Program() override { fs::remove_all(folder); }
    std::string path(const std::string& name) const { return (folder / name).string(); }
    static void write(const std::string& to, std::string_view text) { std::ofstream(to) << text; }
    static std::string read(const std::string& from) {
        std::ostringstream text;
        text << std::ifstream(from).rdbuf();
        return text.str();
    }

    fs::path folder = fs::temp_directory_path() / ("controller_test_" + std::to_string(getpid()));
};

TEST_F(Program, OptionsAreReadAndBadOnesExplained) {
    const auto parse = [](std::vector<const char*> words) { return parse_options(words); };
    const Options good = parse({"--pace", "38400", "--engine=pull", "--capabilities", "0x3F84", "--faults",
                                "lost=0.01,late-by=0.3,unplug-after=9,silent"});
    EXPECT_EQ(good.error, "");
    EXPECT_EQ(good.controller.pace_baud, 38400);
    EXPECT_EQ(good.controller.firmware.driving, Driving::pull);
    EXPECT_EQ(good.controller.firmware.capabilities, 0x3F84);
    EXPECT_EQ(good.controller.faults.rate[0], 0.01);
    EXPECT_EQ(good.controller.faults.unplug_after, 9U);
    EXPECT_TRUE(good.controller.faults.silent);
    EXPECT_THAT(parse({"--pace", "fast"}).error, HasSubstr("fast"));
    EXPECT_THAT(parse({"--faults"}).error, HasSubstr("--faults: 1 required"));
    EXPECT_THAT(parse({"--faults", "lost=2"}).error, HasSubstr("0 to 1"));
    EXPECT_THAT(parse({"--faults", "lsot=1"}).error, HasSubstr("known are"));
    EXPECT_THAT(parse({"--colour", "red"}).error, HasSubstr("--colour"));
    EXPECT_THAT(parse({"stray"}).error, HasSubstr("stray"));
}

TEST_F(Program, TheStateFileBringsEverythingBack) {
    ControllerMemory memory;
    memory.store_cell(0x0107, 99);
    memory.store_cell(0xFFFF, 7);
    memory.store(slot("INJO") + 7, 0xFFFE);
    ASSERT_EQ(save_state(path("state"), memory), "");
    ControllerMemory loaded;
    EXPECT_EQ(load_state(path("state"), loaded), "");
    EXPECT_EQ(loaded, memory);
    EXPECT_EQ(load_state(path("missing"), loaded), "");
    EXPECT_THAT(save_state(path("no/such/folder"), memory), HasSubstr("cannot be written"));
}

TEST_F(Program, ADamagedOrForeignStateFileIsNamedAndLeftAlone) {
    ControllerMemory memory;
    ASSERT_EQ(save_state(path("state"), memory), "");
    const std::string whole = read(path("state"));
    std::string flipped = whole;
    flipped[whole.find("FS_RPM") + 7] = '9';
    for (const std::string& text : {std::string(), std::string("SET_REV = 10000\r\n"), whole.substr(0, 500), flipped}) {
        write(path("state"), text);
        const ControllerMemory before = memory;
        const std::string error = load_state(path("state"), memory);
        EXPECT_THAT(error, testing::AllOf(HasSubstr(path("state")), HasSubstr("Move it away")));
        EXPECT_EQ(memory, before);
        EXPECT_EQ(read(path("state")), text);
    }
    EXPECT_THAT(load_state(folder.string(), memory), HasSubstr("cannot be read"));
}

TEST_F(Program, TheLinkReplacesItsOwnKindOnly) {
    const std::string link = path("ecu");
    write(link, "a file of the user");
    EXPECT_THAT(make_device_link(link, "/dev/pts/9"), HasSubstr("left alone"));
    EXPECT_EQ(read(link), "a file of the user");
    fs::remove(link);
    fs::create_symlink("/no/such/thing", link);
    EXPECT_EQ(make_device_link(link, "/dev/pts/9"), "");
    EXPECT_EQ(make_device_link(link, "/dev/pts/8"), "");
    remove_device_link(link, "/dev/pts/9"); // another run's by now
    EXPECT_EQ(fs::read_symlink(link), "/dev/pts/8");
    remove_device_link(link, "/dev/pts/8");
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
    fs::create_symlink(folder, link);
    EXPECT_THAT(make_device_link(link, "/dev/pts/9"), HasSubstr("left alone"));
}

constexpr int patience_ms = 20000; // before what is awaited counts as lost

// Sends a request and waits for so many bytes.
std::size_t ask(int line, std::uint8_t command, std::size_t wanted) {
    const link::Request request = link::build_request(Bytes{command});
    EXPECT_EQ(write(line, request.data(), request.size()), 8);
    Bytes bytes(256);
    std::size_t got = 0;
    pollfd waiting{line, POLLIN, 0};
    while (got < wanted && poll(&waiting, 1, patience_ms) > 0) {
        const ssize_t count = read(line, bytes.data(), bytes.size());
        if (count <= 0) {
            break;
        }
        got += static_cast<std::size_t>(count);
    }
    return got;
}

TEST(Terminal, ClientsComeAndGoAndRepliesTakeTheirWireTimeUntilThePlugIsPulled) {
    Settings settings;
    settings.pace_baud = 38400;
    settings.faults.unplug_after = 1 + 20;
    VirtualController controller(settings);
    PtyServer server(controller);
    std::array<int, 2> end_pipe{};
    ASSERT_EQ(pipe(end_pipe.data()), 0);
    std::thread thread([&] { server.serve(end_pipe[0], [] {}); });
    const auto client = [&] { return Descriptor(open(server.device().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK)); };
    EXPECT_EQ(ask(client().get(), 'A', 65), 65U);
    const Descriptor line = client();
    const double wire_time = 73 * 10 / 38400.0;
    double quickest = 1;
    for (int i = 0; i < 20; ++i) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(ask(line.get(), 'A', 65), 65U);
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        EXPECT_GE(taken.count(), wire_time);
        quickest = std::min(quickest, taken.count());
    }
    EXPECT_LT(quickest, wire_time * 1.5) << "one of twenty at least, on however busy a machine";
    EXPECT_EQ(ask(line.get(), 'A', 65), 0U);
    pollfd hung_up{line.get(), POLLIN, 0};
    EXPECT_EQ(poll(&hung_up, 1, patience_ms), 1);
    EXPECT_TRUE(hung_up.revents & POLLHUP);
    close(end_pipe[1]);
    thread.join();
    close(end_pipe[0]);
}

} // namespace
} // namespace ecu::controller
