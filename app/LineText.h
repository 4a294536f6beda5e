#pragma once

#include <QString>

#include <string>

namespace app {

/**
 * Names that go into the program's line-based files (pattern, preset and list names): one line,
 * no NUL, no trailing blanks. The files' reader drops trailing white space, so a name is kept as
 * it will read back; line breaks and NULs would split or damage the file, so they become blanks.
 */
class LineText
{
public:
    static std::string toLine(const QString& text)
    {
        QString line = text;
        for (QChar& c : line) {
            if (c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QChar::Null ||
                c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
                c = QLatin1Char(' ');
        }
        qsizetype end = line.size();
        while (end > 0 && line.at(end - 1).unicode() < 0x80 && line.at(end - 1).isSpace())
            --end;
        return line.left(end).toStdString();
    }
};

} // namespace app
