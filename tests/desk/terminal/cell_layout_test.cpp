#include "cell_layout.h"

#include <gtest/gtest.h>

#include <string>

using namespace desk;

namespace
{

/// Lines in one window; letters are as good as any text.
struct Page
{
	int firstRow = 0, endRow = cellRows, firstColumn = 0, endColumn = cellColumns;
	std::vector<CellLine> lines;
	std::vector<std::string> texts;
	CoveredCells covered = [](int, int) { return ColumnSet(); };

	void add(int centre, int column, const std::string &text)
	{
		CellLine line;
		line.centre = centre;
		line.row = centre / 20;
		line.column = column;
		line.width = static_cast<int>(text.size());
		for (size_t i = 0; i < text.size(); ++i)
			if (text[i] != ' ')
				line.taken.set(static_cast<size_t>(column) + i);
		line.firstRow = firstRow;
		line.endRow = endRow;
		line.firstColumn = firstColumn;
		line.endColumn = endColumn;
		line.order = static_cast<int>(lines.size()) + 1;
		lines.push_back(line);
		texts.push_back(text);
	}

	/// The rows from firstRow to endRow, without the blanks at their ends.
	std::vector<std::string> placed()
	{
		std::vector<CellLine *> all;
		for (CellLine &line : lines)
			all.push_back(&line);
		placeLines(all, covered);
		std::vector<std::string> rows(cellRows, std::string(cellColumns, ' '));
		for (size_t i = 0; i < lines.size(); ++i)
			for (const CellPiece &piece : lines[i].pieces)
				for (int c = piece.from; c < piece.end; ++c)
					if (const char letter = texts[i][static_cast<size_t>(c)]; letter != ' ') {
						char &cell = rows[static_cast<size_t>(piece.row)]
										 [static_cast<size_t>(piece.column + c - piece.from)];
						EXPECT_EQ(cell, ' ') << "overwritten in row " << piece.row;
						cell = letter;
					}
		for (std::string &row : rows)
			row.erase(row.find_last_not_of(' ') + 1);
		return {rows.begin() + firstRow, rows.begin() + endRow};
	}
};

using Rows = std::vector<std::string>;

TEST(CellLayout, LinesACellApartStandInTheirOwnRows)
{
	Page page;
	page.endRow = 3;
	page.add(10, 0, "one");
	page.add(30, 0, "two");
	page.add(50, 0, "three");
	EXPECT_EQ(page.placed(), (Rows{"one", "two", "three"}));
}

TEST(CellLayout, LinesThatAreTooCloseArePushedDownInOrder)
{
	Page page;
	page.endRow = 5;
	page.add(8, 0, "one");
	page.add(12, 0, "two");
	page.add(16, 0, "three");
	page.add(50, 0, "four");
	EXPECT_EQ(page.placed(), (Rows{"one", "two", "three", "four", ""}));
}

TEST(CellLayout, LinesArePushedUpWhereTheWindowEnds)
{
	Page page;
	page.endRow = 4;
	page.add(30, 0, "one");
	page.add(50, 0, "two");
	page.add(62, 0, "three");
	page.add(78, 0, "four");
	EXPECT_EQ(page.placed(), (Rows{"one", "two", "three", "four"}));
}

TEST(CellLayout, CellsOfOneTableRowStayBesideEachOther)
{
	Page page;
	page.endRow = 4;
	page.add(8, 0, "a1");
	page.add(16, 0, "a2");
	page.add(8, 10, "b1");
	page.add(16, 10, "b2");
	page.add(16, 20, "c2"); // alone in its column, it could stay in the first row
	EXPECT_EQ(page.placed(), (Rows{"a1        b1", "a2        b2        c2", "", ""}));
}

TEST(CellLayout, BlanksLetOtherTextsThrough)
{
	Page page;
	page.endRow = 2;
	page.add(10, 0, "one       three   ");
	page.add(10, 4, "two");
	EXPECT_EQ(page.placed(), (Rows{"one two   three", ""}));
}

TEST(CellLayout, WhatFindsNoRowGoesToFreeCells)
{
	Page page;
	page.endRow = 2;
	page.endColumn = 20;
	page.add(8, 0, "one");
	page.add(20, 0, "two");
	page.add(32, 0, "three");
	const Rows rows = page.placed();
	EXPECT_EQ(rows, (Rows{"one", "two three"}));
}

TEST(CellLayout, ALineThatFitsNowhereIsPlacedWordByWord)
{
	Page page;
	page.endRow = 2;
	page.endColumn = cellColumns;
	page.add(8, 0, std::string(80, 'a'));
	page.add(28, 0, std::string(80, 'b'));
	page.add(30, 0, "first second");
	page.covered = [](int row, int) { return row < 2 ? ColumnSet() : ~ColumnSet(); };
	const Rows rows = page.placed();
	EXPECT_NE((rows[0] + rows[1]).find("first"), std::string::npos);
	EXPECT_NE((rows[0] + rows[1]).find("second"), std::string::npos);
}

TEST(CellLayout, NothingIsMovedToWhereAnotherAreaWasPaintedSince)
{
	Page page;
	page.endRow = 4;
	page.add(8, 0, "one");
	page.add(12, 0, "two");
	page.covered = [](int row, int) { return row == 1 ? ~ColumnSet() : ColumnSet(); };
	EXPECT_EQ(page.placed(), (Rows{"one", "", "two", ""}));
}

TEST(CellLayout, TheWindowInFrontHasTheFirstChoice)
{
	Page page;
	page.endRow = 2;
	page.add(8, 0, "behind");
	page.add(12, 0, "front");
	page.lines[1].window = 1;
	EXPECT_EQ(page.placed(), (Rows{"front", "behind"}));
}

} // namespace
