#include "Grid.h"

#include "support/Bitmap.h"
#include "support/FileContents.h"
#include "support/Process.h"
#include "support/TempFolder.h"

#include <Kelpkit/Color.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <set>
#include <string>
#include <vector>

using test::Bitmap;
using test::TempFolder;

namespace
{

constexpr SIZE kSizes[] = {{980, 560}, {588, 336}, {1960, 1120}, {700, 1000}, {1600, 400}, {981, 563}};

POINT Centre(const RECT& rectangle)
{
    return {(rectangle.left + rectangle.right) / 2, (rectangle.top + rectangle.bottom) / 2};
}

std::uint32_t RunPalette(const std::wstring& arguments)
{
    return test::Run(L"\"" + test::BesideThisProgram(L"palette.exe") + L"\" " + arguments);
}

} // namespace

TEST(PaletteGrid, EveryColourHasACellOfItsOwn)
{
    for (const SIZE& size : kSizes) {
        const Grid grid(size.cx, size.cy);
        for (int index = Grid::kFirst; index <= Grid::kLast; ++index) {
            const RECT cell = grid.Cell(index);
            EXPECT_LT(cell.left, cell.right) << index;
            EXPECT_LT(cell.top, cell.bottom) << index;
            EXPECT_GE(cell.left, 0) << index;
            EXPECT_LE(cell.right, size.cx) << index;
            EXPECT_GE(cell.top, 0) << index;
            EXPECT_LE(cell.bottom, grid.StatusBar().top) << index;
            EXPECT_EQ(grid.IndexAt(Centre(cell)), index);
        }
        EXPECT_EQ(grid.IndexAt({0, 0}), 0);
        EXPECT_EQ(grid.IndexAt(Centre(grid.StatusBar())), 0);
    }
}

TEST(PaletteGrid, HuesStandInColumnsAndValuesInRows)
{
    const Grid grid(Grid::kDesignWidth, Grid::kDesignHeight);
    for (int index = 10; index < 250; ++index) {
        EXPECT_EQ(grid.Cell(index).left, grid.Cell(index / 10 * 10).left) << index;
        EXPECT_EQ(grid.Cell(index).top, grid.Cell(10 + index % 10).top) << index;
    }
    EXPECT_LT(grid.Cell(18).top, grid.Cell(10).top) << "the even ones are above";
    EXPECT_LT(grid.Cell(10).top, grid.Cell(11).top) << "the odd ones below";
    EXPECT_LT(grid.Cell(11).top, grid.Cell(19).top);
    EXPECT_LT(grid.Cell(19).bottom, grid.Cell(1).top) << "the named ones are apart";
    EXPECT_LT(grid.Cell(9).right, grid.Cell(250).left) << "and so are the greys";
}

TEST(PaletteGrid, ArrowKeysReachEveryColour)
{
    std::set<int> reached = {Grid::kFirst};
    std::vector<int> fresh = {Grid::kFirst};
    while (!fresh.empty()) {
        const int index = fresh.back();
        fresh.pop_back();
        for (const Grid::Step step : {Grid::Step::kLeft, Grid::Step::kRight, Grid::Step::kUp, Grid::Step::kDown}) {
            const int next = Grid::Neighbour(index, step);
            if (reached.insert(next).second)
                fresh.push_back(next);
        }
    }
    EXPECT_EQ(reached.size(), 255U);
    EXPECT_EQ(*reached.begin(), 1);
    EXPECT_EQ(*reached.rbegin(), 255);
}

TEST(PalettePicture, ShowsEveryColourInItsCell)
{
    const TempFolder folder(L"色 palette");
    ASSERT_EQ(RunPalette(L"--picture \"" + (folder / L"p.bmp") + L"\""), 0U);
    const Bitmap picture(test::ReadFileBytes(folder / L"p.bmp"));
    ASSERT_EQ(picture.Width(), Grid::kDesignWidth);
    ASSERT_EQ(picture.Height(), Grid::kDesignHeight);
    const Grid grid(Grid::kDesignWidth, Grid::kDesignHeight);
    for (int index = Grid::kFirst; index <= Grid::kLast; ++index) {
        // Near the corners: in the middle stand some indices, and the ring of a neighbour reaches over the edge.
        const RECT cell = grid.Cell(index);
        const COLORREF color = KELPKIT::CADColorToREF(std::to_wstring(index));
        EXPECT_EQ(picture.At(cell.left + 3, cell.top + 3), color) << index;
        EXPECT_EQ(picture.At(cell.right - 4, cell.bottom - 4), color) << index;
    }
}

TEST(PalettePicture, IsAPngUnlessTheNameEndsInBmp)
{
    const TempFolder folder;
    ASSERT_EQ(RunPalette(L"--picture \"" + (folder / L"p.png") + L"\" 12"), 0U);
    EXPECT_EQ(test::ReadFileBytes(folder / L"p.png").substr(0, 8), "\x89PNG\r\n\x1A\n");
}

TEST(PalettePicture, SaysByItsExitCodeWhatWentWrong)
{
    const TempFolder folder;
    EXPECT_EQ(RunPalette(L"--picture \"" + (folder / L"missing\\p.bmp") + L"\""), 1U);
    EXPECT_EQ(RunPalette(L"--picture \"" + (folder / L"missing\\p.png") + L"\""), 1U);
    EXPECT_EQ(RunPalette(L"--picture"), 2U);
    EXPECT_EQ(RunPalette(L"--nonsense"), 2U);
    EXPECT_EQ(RunPalette(L"--picture \"" + (folder / L"p.bmp") + L"\" 256"), 2U);
}
