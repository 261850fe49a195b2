#include "support/sim_desktop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace ecu::test {

namespace {

constexpr double longest_modal_seconds = 60; // that a form may stay open after the user's action

platform::Answer safe_answer(platform::Buttons buttons) {
    return buttons == platform::Buttons::ok       ? platform::Answer::ok
           : buttons == platform::Buttons::yes_no ? platform::Answer::no
                                                  : platform::Answer::cancel;
}

} // namespace

SimDesktop::SimDesktop() {
    std::string name = (std::filesystem::temp_directory_path() / "ecu-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary folder " + name);
    }
    folder_ = name;
}

SimDesktop::~SimDesktop() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
    for (const auto& [text, answer] : answers_) {
        ADD_FAILURE() << "no message box asked for the answer to: " << text;
    }
    for (const std::string& file : files_) {
        ADD_FAILURE() << "no file dialog asked for: " << file;
    }
    for (const auto& [form, actions] : modal_actions_) {
        EXPECT_TRUE(actions.empty()) << "the modal form never came: " << form;
    }
}

void SimDesktop::write_file(std::string_view name, std::string_view text) const {
    std::ofstream(folder_ / name, std::ios::binary) << text;
}

std::string SimDesktop::read_file(std::string_view name) const {
    std::ifstream file(folder_ / name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << "there is no file " << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> SimDesktop::box_texts() const {
    std::vector<std::string> texts;
    std::ranges::transform(boxes_, std::back_inserter(texts), &platform::MessageBox::text);
    return texts;
}

platform::Answer SimDesktop::message_box(const platform::MessageBox& box) {
    boxes_.push_back(box);
    const auto scripted = std::ranges::find_if(
        answers_, [&](const auto& answer) { return box.text.find(answer.first) != std::string::npos; });
    if (scripted == answers_.end()) {
        ADD_FAILURE() << "unexpected message box: " << box.text;
        return safe_answer(box.buttons);
    }
    const platform::Answer answer = scripted->second;
    answers_.erase(scripted);
    return answer;
}

std::string SimDesktop::next_file(const platform::FileDialog& dialog) {
    file_dialogs_.push_back(dialog);
    if (const auto action = std::exchange(while_choosing, nullptr)) {
        action();
    }
    if (files_.empty()) {
        ADD_FAILURE() << "unexpected file dialog: " << dialog.title;
        return "";
    }
    const std::string file = files_.front();
    files_.pop_front();
    return file;
}

void SimDesktop::on_modal(const std::string& form, std::function<void(platform::Form&)> action) {
    modal_actions_[form].push_back(std::move(action));
}

void SimDesktop::run_modal(platform::Form& form) {
    form_shown(form);
    process_events();
    if (!form.visible()) {
        return; // it closed itself
    }
    auto& actions = modal_actions_[form.name()];
    if (actions.empty()) {
        ADD_FAILURE() << "unexpected modal form: " << form.name();
        form.hide();
        return;
    }
    const auto action = std::move(actions.front());
    actions.pop_front();
    action(form);
    if (!run_until([&form] { return !form.visible(); }, longest_modal_seconds)) {
        ADD_FAILURE() << "the modal form stayed open: " << form.name();
        form.hide();
    }
}

int SimDesktop::changes(const std::string& form, const std::string& control,
                        std::optional<platform::Property> property) const {
    int count = 0;
    for (const auto& [changed, times] : changes_) {
        const auto& [which, what] = changed;
        if (which->form().name() == form && which->full_name() == control && what == property.value_or(what)) {
            count += times;
        }
    }
    return count;
}

} // namespace ecu::test
