// Every item of the calibration by literal frames: its read, the reply in its control, an entry's write, the echo.
#include "messages/parameter_forms.h"
#include "support/fixture.h"

#include <gmock/gmock.h>

#include <sstream>

namespace ecu::test {
namespace {

using calibration::Parameter;
using calibration::Table;
using platform::bright_white;
using platform::yellow;

struct FrameLine {
    std::string key;
    int element = 0;
    Bytes read, reply;
    std::string control;
    int raw = 0;
    std::string shown, entry;
    Bytes write, echo;
    std::string echo_shown;
};

// A text, or the states of switches without the sign between their groups.
std::string text_of(std::string field) {
    std::erase(field, '+');
    return field;
}

std::vector<FrameLine> frame_lines() {
    std::vector<FrameLine> lines;
    for (const auto& field : fixture("parameter_frames.csv")) {
        lines.push_back({field[0], std::stoi(field[1]), bytes_of(field[2]),
                         field[3] == "=" ? lines.back().reply : bytes_of(field[3]), field[4], std::stoi(field[5]),
                         text_of(field[6]), text_of(field[7]), bytes_of(field[8]), bytes_of(field[9]),
                         text_of(field[10])});
    }
    return lines;
}

// Controls as the fixture names them: a box "name" or "name(i)", a grid's cell "name(r,c)", switches "name[n]+name".
class Shown {
public:
    Shown(const platform::FormRegistry& forms, const std::string& reference)
        : form_(forms.at(reference.substr(0, reference.find('.')))) {
        std::istringstream names(reference.substr(reference.find('.') + 1));
        for (std::string name; std::getline(names, name, '+');) {
            add(name);
        }
    }
    std::string text() const {
        if (grid_ != nullptr) {
            return grid_->cell_text(row_, column_);
        }
        if (!switches_) {
            return controls_.front()->text();
        }
        std::string state;
        for (const platform::Control* control : controls_) {
            state += checked(*control) ? '1' : '0';
        }
        return state;
    }
    // As the tuner would: text or switches, and the mark of a change.
    void enter(const std::string& entry) {
        if (grid_ != nullptr) {
            grid_->set_cell_text(row_, column_, entry);
            grid_->set_cell_back(row_, column_, yellow);
        } else if (!switches_) {
            controls_.front()->set_text(entry);
            controls_.front()->set_back_colour(yellow);
        } else {
            set_switches(entry);
        }
    }
    // Yellow for a change that waits, white once it is confirmed.
    std::optional<platform::Colour> mark() const {
        if (grid_ != nullptr || !switches_) {
            return grid_ != nullptr ? grid_->cell_back(row_, column_) : controls_.front()->back_colour();
        }
        const platform::Control& first = *controls_.front();
        return first.fore_colour() == platform::black && first.tag().empty() ? bright_white : yellow;
    }

private:
    static bool checked(const platform::Control& control) {
        const auto* box = dynamic_cast<const platform::CheckBox*>(&control);
        return box != nullptr ? box->checked() : dynamic_cast<const platform::OptionButton&>(control).checked();
    }
    void set_switches(const std::string& entry) {
        for (std::size_t n = 0; n < controls_.size(); ++n) {
            if (auto* box = dynamic_cast<platform::CheckBox*>(controls_[n])) {
                box->set_checked(entry.at(n) == '1');
            } else if (entry.at(n) == '1') {
                dynamic_cast<platform::OptionButton&>(*controls_[n]).set_checked(true);
            }
        }
        controls_.front()->set_fore_colour(yellow);
        controls_.front()->set_tag("X");
    }
    void add(const std::string& name) {
        const std::size_t open = name.find_first_of("([");
        const std::string bare = name.substr(0, open);
        const int number = open == std::string::npos ? -1 : std::stoi(name.substr(open + 1));
        if (name.find(',') != std::string::npos) {
            grid_ = &form_.get<platform::Grid>(bare);
            row_ = number;
            column_ = std::stoi(name.substr(name.find(',') + 1));
            return;
        }
        if (open != std::string::npos && name[open] == '[') {
            for (int n = 0; n < number; ++n) {
                controls_.push_back(&form_.at(bare, n));
            }
        } else {
            controls_.push_back(&form_.at(bare, number));
        }
        switches_ = controls_.front()->kind() != platform::Kind::text_box;
    }

    platform::Form& form_;
    platform::Grid* grid_ = nullptr;
    int row_ = 0;
    int column_ = 0;
    std::vector<platform::Control*> controls_;
    bool switches_ = false;
};

// A request's command and arguments as they travel.
Bytes travelling(const link::Message& message) {
    const link::Request request = link::build_request(message);
    return {request.begin() + 2, request.begin() + 6};
}

TEST(ParameterFrames, EveryItemReadsShowsWritesAndEchoes) {
    ParameterBench bench;
    int items = 0;
    for (const FrameLine& line : frame_lines()) {
        SCOPED_TRACE(line.key);
        const Parameter* row = calibration::find_parameter(line.key);
        const Table* table = calibration::find_table(line.key);
        ASSERT_TRUE((row != nullptr) != (table != nullptr));
        ++items;
        bench.scales = {.map_span = 255, .map_base = 10, .full_scale_rpm = 8000};
        Shown control(bench.forms, line.control);

        EXPECT_EQ(travelling(row != nullptr ? calibration::read_message(calibration::read_request(*row))
                                            : calibration::cell_read_message(table->base + line.element)),
                  line.read);
        if (row != nullptr) {
            EXPECT_EQ(row->read.reply, line.reply.size() + 2);
        }
        control.enter(control.text()); // pending: an entry that the controller has not answered
        EXPECT_FALSE(bench.receive(line.reply, 1)) << "a reply of another size";
        EXPECT_EQ(control.mark(), yellow);
        EXPECT_TRUE(bench.receive(line.reply));
        EXPECT_EQ(control.text(), line.shown);
        EXPECT_EQ(control.mark(), bright_white);
        EXPECT_EQ(row != nullptr ? bench.image.raw(*row, line.element) : bench.image.cell(table->base + line.element),
                  line.raw);

        control.enter(line.entry);
        Bytes write;
        if (table != nullptr) {
            write = calibration::cell_write_message(table->base + line.element,
                                                    calibration::raw_from_entry(*table, line.entry, bench.scales).raw);
        } else {
            EXPECT_TRUE(bench.decoders.controls().pending(*row, line.element));
            write = calibration::write_message(*row, line.element,
                                               row->shows_text()
                                                   ? calibration::raw_from_entry(*row, line.entry, bench.scales).raw
                                                   : bench.decoders.controls().switches(*row, line.element));
            EXPECT_EQ(row->write.reply, line.echo.size() + 2);
        }
        EXPECT_EQ(write, line.write);
        EXPECT_TRUE(bench.receive(line.echo));
        EXPECT_EQ(control.text(), line.echo_shown);
        EXPECT_EQ(control.mark(), bright_white);
    }
    EXPECT_EQ(items, 75 + 21 + 29);
}

} // namespace
} // namespace ecu::test
