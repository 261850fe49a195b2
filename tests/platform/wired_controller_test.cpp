#include "support/sim_desktop.h"
#include "support/wired_controller.h"

#include <gtest/gtest.h>

namespace ecu::test {
namespace {

TEST(WiredController, RepliesArriveAtTheWiresPaceAndAgainAfterFaults) {
    SimDesktop desktop;
    const auto port = desktop.make_serial_port();
    ASSERT_EQ(port->open(1, 38400), "");
    controller::Settings settings;
    settings.pace_baud = 38400;
    WiredController wired(desktop, desktop.line(), settings);
    const auto exchange = [&] {
        port->write(request_frame({'A'}));
        desktop.run_for(0.1);
        return port->read_all();
    };
    port->write(request_frame({'A'}));
    ASSERT_TRUE(desktop.run_until([&] { return port->available() == 65; }, 1));
    EXPECT_NEAR(desktop.seconds(), 73 * 10 / 38400.0, 0.001);
    EXPECT_EQ(port->read_all()[2], 'A');
    wired.drop_next_reply();
    EXPECT_EQ(exchange().size(), 0U);
    wired.cut_next_reply();
    EXPECT_LT(exchange().size(), 65U);
    wired.silence();
    EXPECT_EQ(exchange().size(), 0U);
    wired.speak();
    EXPECT_EQ(exchange().size(), 65U);
}

} // namespace
} // namespace ecu::test
