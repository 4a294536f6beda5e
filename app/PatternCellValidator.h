#pragma once

#include "app/PatternCellText.h"

#include <QRegularExpression>
#include <QValidator>

namespace app {

/**
 * Lets the grid's edit popup take only what PatternCellText reads: characters that can start a
 * cell are let through while typing, and the text is accepted once it is a whole cell, so that
 * Enter never stores a half-typed cell and leaving the popup drops one.
 */
class PatternCellValidator : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString& input, int&) const override
    {
        if (PatternCellText::parse(input))
            return Acceptable;
        static const QRegularExpression typing(
            QStringLiteral("^\\s*[?a-gA-GkKtToO0-9#:+\\-=.]*\\s*$"));
        return typing.match(input).hasMatch() ? Intermediate : Invalid;
    }
};

} // namespace app
