#pragma once

#include <QString>
#include <vector>

// The text in which spreadsheets exchange cells: rows end with line feeds, cells are separated by tabs, and a
// cell that contains such a character or begins with a quotation mark stands in quotation marks, its own ones
// doubled.

/// Rows of cells. Text without tabs is taken apart at commas, semicolons and spaces where `splits`, as other
/// programs write numbers, and in brackets, as scene files have it, commas end the rows; it is one cell a row
/// otherwise. The end of the last row may be missing.
std::vector<std::vector<QString>> vntReadSheet(QString const& text, bool splits);
void vntWriteCell(QString& text, QString const& cell);
