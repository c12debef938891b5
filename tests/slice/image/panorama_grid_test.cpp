// Where the thumbnails of a panorama lie, and where keys lead.

#include "slice/image/nyxpanoramagrid.h"

#include <gtest/gtest.h>

namespace
{
const QSize cell(100, 120);
constexpr int gap = 10;

NYXPanoramaGrid gridOf(int numCells, int width)
{
  return {numCells, cell, gap, width};
}
} // namespace

TEST(PanoramaGrid, ReflowsWithTheWidth)
{
  const struct
  {
    int numCells, width, numColumns, numRows, height;
    QRect last;
  } cases[] = {
      {0, 450, 4, 0, 0, {}},
      {1, 450, 4, 1, 140, {QPoint(10, 10), cell}},
      {7, 450, 4, 2, 270, {QPoint(230, 140), cell}}, // 4 x 100 and 5 gaps
      {7, 449, 3, 3, 400, {QPoint(64, 270), cell}},  // 129 pixels beyond 3 x 100 and 2 gaps, half of them at the left
      {8, 450, 4, 2, 270, {QPoint(340, 140), cell}}, // a full row
      {3, 50, 1, 3, 400, {QPoint(0, 270), cell}},    // narrower than a thumbnail
      {1000, 119, 1, 1000, 130010, {QPoint(9, 10 + 999 * 130), cell}},
  };
  for (const auto& c : cases)
  {
    SCOPED_TRACE(testing::Message() << c.numCells << " in " << c.width);
    const NYXPanoramaGrid grid = gridOf(c.numCells, c.width);
    EXPECT_EQ(grid.numColumns(), c.numColumns);
    EXPECT_EQ(grid.numRows(), c.numRows);
    EXPECT_EQ(grid.height(), c.height);
    if (c.numCells == 0) continue;
    EXPECT_EQ(grid.cellRect(c.numCells - 1), c.last);
  }
}

TEST(PanoramaGrid, FindsTheCellAtAPosition)
{
  const NYXPanoramaGrid grid = gridOf(7, 450);
  const struct
  {
    QPoint position;
    int cell;
  } cases[] = {
      {{10, 10}, 0},   {{109, 129}, 0}, {{110, 60}, -1},                   // between columns
      {{120, 60}, 1},  {{60, 135}, -1},                                    // between rows
      {{5, 60}, -1},   {{60, 5}, -1},   {{230, 140}, 6}, {{340, 140}, -1}, // no eighth
      {{445, 60}, -1}, {{-50, 60}, -1}, {{60, -50}, -1}, {{60, 5000}, -1},
  };
  for (const auto& c : cases) EXPECT_EQ(grid.cellAt(c.position), c.cell) << c.position.x() << ", " << c.position.y();
}

/// Against the cells whose rectangles the window overlaps.
TEST(PanoramaGrid, KnowsWhatAWindowShows)
{
  const NYXPanoramaGrid grid = gridOf(23, 450);
  for (int top = 0; top < grid.height() + 50; top += 7)
    for (const int height : {0, 1, 90, 400})
    {
      const NYXPanoramaGrid::Range range = grid.visibleCells(top, height);
      ASSERT_LE(range.first, range.end);
      for (int i = 0; i < 23; ++i)
      {
        const bool isShown = height > 0 && grid.cellRect(i).intersects(QRect(0, top, 450, height));
        ASSERT_TRUE(!isShown || (i >= range.first && i < range.end)) << i << " at " << top << ", " << height;
      }
      EXPECT_LE(range.end - range.first, 4 * ((height + 2 * 130) / 130)); // no more than the rows that fit
    }
}

TEST(PanoramaGrid, KeysLeadFromCellToCell)
{
  const struct
  {
    int from;
    Qt::Key key;
    int to;
  } cases[] = {
      {5, Qt::Key_Left, 4},       {0, Qt::Key_Left, 0},      {5, Qt::Key_Right, 6},
      {22, Qt::Key_Right, 22},    {5, Qt::Key_Up, 1},        {1, Qt::Key_Up, 1},
      {5, Qt::Key_Down, 9},       {19, Qt::Key_Down, 22}, // none below
      {21, Qt::Key_Down, 21},     {1, Qt::Key_PageDown, 13}, {14, Qt::Key_PageDown, 22},
      {21, Qt::Key_PageDown, 21}, {14, Qt::Key_PageUp, 2},   {6, Qt::Key_PageUp, 2},
      {9, Qt::Key_Home, 0},       {9, Qt::Key_End, 22},      {-1, Qt::Key_Down, 0},
      {9, Qt::Key_Space, 9},
  };
  const NYXPanoramaGrid grid = gridOf(23, 450);
  for (const auto& c : cases) EXPECT_EQ(grid.cellAfterKey(c.from, c.key, 400), c.to) << c.from << " " << c.key;
  EXPECT_EQ(gridOf(0, 450).cellAfterKey(-1, Qt::Key_Home, 400), -1);
  EXPECT_EQ(grid.cellAfterKey(5, Qt::Key_PageDown, 20), 9); // a row at the least
}
