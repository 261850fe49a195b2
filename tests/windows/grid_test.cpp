#include "desktop/grid_view.h"
#include "desktop/theme.h"
#include "windows/window_bench.h"

#include <QClipboard>
#include <QHeaderView>
#include <QLineEdit>
#include <QSet>

namespace ecu::desktop {
namespace {

using platform::confirmed;
using platform::pending;

struct Sample {
    platform::Form form{"frm_grid", "Grid"};
    platform::Grid grid{form, "inj_map", 4, 5};
};

class GridWindow : public testing::Test {
protected:
    GridWindow() {
        for (int row = 1; row <= 4; ++row) {
            for (int column = 1; column <= 5; ++column) {
                form_.grid.confirm_cell(row, column, std::to_string(10 * row + column));
            }
        }
        form_.grid.cell_changed = [this](int row, int column) { form_.grid.set_cell_back(row, column, pending); };
        window_.set_body(window_.make(form_.grid, "Fuel map"));
        form_.form.show();
        view_ = &named<GridView>(window_, "inj_map");
        view_->setFocus();
        select(1, 1);
        QTest::qWait(1);
    }
    void select(int row, int column) { view_->setCurrentIndex(view_->model()->index(row - 1, column - 1)); }
    QPoint place_of(int row, int column) const {
        return view_->visualRect(view_->model()->index(row - 1, column - 1)).center();
    }
    QLineEdit* editor() const { return view_->viewport()->findChild<QLineEdit*>(); }
    void type(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : view_, key, modifiers);
    }

    QtHost host_;
    Sample form_;
    FormWindow window_{form_.form, host_};
    GridView* view_ = nullptr;
};

TEST_F(GridWindow, ModelCellIsTheGridCellWithoutHeaders) {
    const QModelIndex index = view_->model()->index(2, 1);
    EXPECT_EQ(index.data().toString(), "32");
    form_.grid.set_cell_back(3, 2, platform::light_red);
    EXPECT_EQ(index.data(Qt::BackgroundRole).value<QBrush>().color(), theme::to_qt(platform::light_red));
    EXPECT_TRUE(view_->horizontalHeader()->isHidden());
    form_.grid.set_column_width(2, 0);
    EXPECT_TRUE(view_->isColumnHidden(1));
    expect_complete(window_);
}

TEST_F(GridWindow, TypingReplacesAtOnceAndEnterReachesTheGrid) {
    int updates = 0;
    form_.grid.key_press = [&](platform::KeyPress& key) {
        if (key.code == platform::key::enter) {
            ++updates;
            key.code = 0;
        }
    };
    type(Qt::Key_7);
    type(Qt::Key_5);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "75");
    EXPECT_TRUE(form_.grid.cell_pending(1, 1)); // even before the edit ends
    type(Qt::Key_Return);
    EXPECT_EQ(updates, 1);
    EXPECT_TRUE(view_->hasFocus()) << "the edit is over";
    EXPECT_FALSE(form_.grid.cell_pending(1, 2));
}

TEST_F(GridWindow, EscapeRestoresTheTextTypedOverOrWhatWasConfirmedSince) {
    type(Qt::Key_9);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "9");
    type(Qt::Key_Escape);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "11");
    EXPECT_EQ(form_.grid.cell_back(1, 1), confirmed);
    for (const bool more : {false, true}) {
        type(Qt::Key_9);
        form_.grid.confirm_cell(1, 1, "9.000");
        form_.grid.set_cell_back(1, 1, platform::light_red); // shaded
        if (more) {
            type(Qt::Key_5);
        }
        type(Qt::Key_Escape);
        EXPECT_EQ(form_.grid.cell_text(1, 1), "9.000");
        EXPECT_FALSE(form_.grid.cell_pending(1, 1));
    }
}

TEST_F(GridWindow, ReplyDuringAnEditLeavesWhatIsBeingTypedAndLosesNoneOfIt) {
    type(Qt::Key_F2);
    ASSERT_NE(editor(), nullptr);
    type(Qt::Key_End);
    type(Qt::Key_0);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "110");
    form_.grid.confirm_cell(1, 1, "11");
    EXPECT_EQ(editor()->text(), "110");
    type(Qt::Key_Tab);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "110");
    EXPECT_TRUE(form_.grid.cell_pending(1, 1));
}

TEST_F(GridWindow, LockedGridTakesNothingFromTheUser) {
    form_.grid.set_locked(true);
    QApplication::clipboard()->setText("9");
    for (const auto& [key, modifier] : {std::pair{Qt::Key_9, Qt::NoModifier},
                                        {Qt::Key_Delete, Qt::NoModifier},
                                        {Qt::Key_Backspace, Qt::NoModifier},
                                        {Qt::Key_V, Qt::ControlModifier}}) {
        type(key, modifier);
    }
    EXPECT_EQ(form_.grid.cell_text(1, 1), "11");
    form_.grid.set_locked(false);
    type(Qt::Key_Backspace);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "");
    EXPECT_TRUE(form_.grid.cell_pending(1, 1));
}

TEST_F(GridWindow, TabAndArrowsMoveAlsoOutOfAnEdit) {
    type(Qt::Key_3);
    type(Qt::Key_Tab);
    type(Qt::Key_4);
    type(Qt::Key_Down);
    type(Qt::Key_Left);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "3");
    EXPECT_EQ(form_.grid.cell_text(1, 2), "4");
    EXPECT_EQ(form_.grid.active_row(), 2);
    EXPECT_EQ(form_.grid.active_column(), 1);
    form_.grid.set_active_cell(4, 5);
    EXPECT_EQ(view_->currentIndex(), view_->model()->index(3, 4));
}

TEST_F(GridWindow, ConsumedKeyDoesNotMoveTheCursor) {
    form_.grid.key_down = [&](platform::KeyPress& key) {
        if (key.code == platform::key::down && key.shift) {
            form_.grid.set_cell_text(form_.grid.active_row(), form_.grid.active_column(), "stepped");
            key.code = platform::key::shift;
        }
    };
    type(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "stepped");
    EXPECT_EQ(form_.grid.active_row(), 1);
    type(Qt::Key_Down);
    EXPECT_EQ(form_.grid.active_row(), 2);
}

TEST_F(GridWindow, BlockIsCopiedAndPastedAsTabSeparatedText) {
    view_->selectionModel()->select({view_->model()->index(0, 0), view_->model()->index(1, 1)},
                                    QItemSelectionModel::ClearAndSelect);
    type(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "11\t12\n21\t22\n");
    QApplication::clipboard()->setText("1.5\t2.5\r\n3.5\t4.5\r\n");
    select(4, 4);
    type(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(form_.grid.cell_text(4, 4), "1.5");
    EXPECT_EQ(form_.grid.cell_text(4, 5), "2.5"); // the second line would lie outside
    EXPECT_TRUE(form_.grid.cell_pending(4, 5));
    EXPECT_FALSE(form_.grid.cell_pending(4, 3));
    select(3, 2);
    form_.grid.show_block({1, 1, 3, 2}); // as after dragging from the top left: the active cell is the last
    type(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(form_.grid.cell_text(2, 2) + " " + form_.grid.cell_text(3, 2), "4.5 32");
    QApplication::clipboard()->setText("7");
    type(Qt::Key_V, Qt::ControlModifier); // one cell fills them all
    EXPECT_EQ(form_.grid.cell_text(1, 1) + form_.grid.cell_text(3, 2), "77");
}

TEST_F(GridWindow, PasteLeavesBlanksAndNoNumbersAloneAndReadsADecimalComma) {
    platform::Grid::Paste told;
    form_.grid.pasted = [&](const platform::Grid::Paste& paste) { told = paste; };
    const auto paste = [&](const char* text) {
        QApplication::clipboard()->setText(text);
        type(Qt::Key_V, Qt::ControlModifier);
    };
    paste("0,95\t\tabc\n1.2 %\t 7 \r\n");
    EXPECT_EQ(form_.grid.cell_text(1, 1) + " " + form_.grid.cell_text(1, 2) + " " + form_.grid.cell_text(1, 3) + " " +
                  form_.grid.cell_text(2, 1) + " " + form_.grid.cell_text(2, 2),
              "0.95 12 13 21 7");
    EXPECT_FALSE(form_.grid.cell_pending(1, 2) || form_.grid.cell_pending(1, 3));
    EXPECT_EQ(told.refused, 2);
    EXPECT_EQ(told.first_text + std::to_string(told.first_row) + std::to_string(told.first_column), "abc13");
    EXPECT_EQ(told.written.size(), 2U);
    paste(" \n");
    EXPECT_EQ(form_.grid.cell_text(1, 1), "0.95");
}

TEST_F(GridWindow, CommaTypesAPointAndWhatIsNoNumberIsRed) {
    form_.grid.cell_changed = [this](int row, int column) { form_.grid.set_cell_back(row, column, pending); };
    type(Qt::Key_1);
    QTest::keyClick(QApplication::focusWidget(), ',');
    type(Qt::Key_5);
    EXPECT_EQ(form_.grid.cell_text(1, 1), "1.5");
    const auto colour = [this] { return view_->model()->index(0, 0).data(Qt::ForegroundRole).value<QBrush>().color(); };
    EXPECT_NE(colour(), theme::wrong_text());
    QTest::keyClick(QApplication::focusWidget(), 'x');
    EXPECT_EQ(colour(), theme::wrong_text());
    type(Qt::Key_Tab);
    select(2, 2);
    QTest::keyClick(view_, ','); // begins an entry
    EXPECT_EQ(form_.grid.cell_text(2, 2), ".");
}

TEST_F(GridWindow, EachCellTellsItsValueItsPlaceAndItsState) {
    form_.grid.place = [](int row, int) { return std::to_string(10 * row) + " kPa"; };
    const auto told = [this](int row, int column) {
        return view_->model()->index(row - 1, column - 1).data(Qt::AccessibleTextRole).toString().toStdString();
    };
    EXPECT_EQ(told(1, 1), "11, 10 kPa");
    form_.grid.blank_cell(2, 1);
    EXPECT_EQ(told(2, 1), "20 kPa, not read");
    EXPECT_EQ(view_->model()->index(1, 0).data(Qt::ToolTipRole).toString(), "20 kPa, not read");
    form_.grid.set_cell_text(3, 1, "5");
    EXPECT_EQ(told(3, 1), "5, 30 kPa, pending");
    form_.grid.set_cell_back(3, 1, platform::light_red); // shaded, and yet not what the controller has
    EXPECT_EQ(told(3, 1), "5, 30 kPa, not confirmed by the controller");
    type(Qt::Key_9);
    type(Qt::Key_Escape); // nothing was entered
    EXPECT_EQ(told(1, 1), "11, 10 kPa");
    const auto pixel = [this](int row, int column) {
        const QRect cell = view_->visualRect(view_->model()->index(row - 1, column - 1));
        const QImage picture = view_->viewport()->grab(cell).toImage();
        QSet<QRgb> colours;
        for (int x = 2; x < cell.width() / 3; ++x) {
            for (int y = cell.height() / 2; y < cell.height() - 3; ++y) {
                colours.insert(picture.pixel(x, y));
            }
        }
        return colours.size();
    };
    EXPECT_EQ(pixel(4, 4), 1);
    EXPECT_GT(pixel(2, 1), 1) << "hatched";
}

// Else the block dialog would work on other cells than the highlighted ones.
TEST_F(GridWindow, EveryWayToExtendASelectionTellsItsCorners) {
    std::vector<int> corners;
    form_.grid.mouse_down = form_.grid.mouse_up = [&](platform::MouseButton) {
        corners.insert(corners.end(), {form_.grid.mouse_row(), form_.grid.mouse_column()});
    };
    form_.grid.block_chosen = [&](const platform::Grid::Area& block) {
        corners = {block.first_row, block.first_column, block.last_row, block.last_column};
    };
    select(3, 4);
    QTest::mouseClick(view_->viewport(), Qt::LeftButton, Qt::ShiftModifier, place_of(1, 2));
    EXPECT_EQ(corners, (std::vector<int>{3, 4, 1, 2}));
    EXPECT_EQ(view_->selectionModel()->selectedIndexes().size(), 9);
    QTest::mouseClick(view_->viewport(), Qt::LeftButton, {}, place_of(2, 2));
    type(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(corners, (std::vector<int>{2, 2, 2, 3}));
    type(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(corners, (std::vector<int>{1, 1, 4, 5}));
}

TEST_F(GridWindow, MouseTellsTheCellUnderItAndMinusOneOutside) {
    std::vector<std::array<int, 3>> told;
    const auto note = [&](platform::MouseButton button) {
        told.push_back({static_cast<int>(button), form_.grid.mouse_row(), form_.grid.mouse_column()});
    };
    form_.grid.mouse_down = note;
    form_.grid.mouse_up = note;
    QTest::mousePress(view_->viewport(), Qt::LeftButton, {}, place_of(2, 3));
    QTest::mouseRelease(view_->viewport(), Qt::LeftButton, {}, place_of(4, 5));
    QTest::mousePress(view_->viewport(), Qt::RightButton, {}, place_of(1, 1));
    QTest::mouseRelease(view_->viewport(), Qt::LeftButton, {}, QPoint(-50, -50));
    EXPECT_EQ(told, (std::vector<std::array<int, 3>>{{1, 2, 3}, {1, 4, 5}, {2, 1, 1}, {1, -1, -1}}));
}

} // namespace
} // namespace ecu::desktop
