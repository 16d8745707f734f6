// The LIKE of the dialect: * ? # [a-z] [!a-z]; case folds, accents count.
#pragma once

#include <QString>
#include <QStringView>
#include <vector>

namespace jet::text {

/// A pattern taken apart once and matched often.
class LikePattern {
public:
    explicit LikePattern(QStringView pattern);

    /// Throws jet::Error 93 when matching reaches an unclosed "[" or a reversed range.
    bool matches(QStringView text) const;
    /// The literal text before the first wildcard; empty when it begins with one.
    QString prefix() const;
    /// The pattern holds no wildcard at all.
    bool isLiteral() const;

private:
    struct Element {
        enum Kind { Literal, Any, One, Digit, Set, Broken } kind;
        char32_t character = 0;
        bool negated = false;
        std::vector<std::pair<char32_t, char32_t>> ranges;
    };
    class Parser;
    class Subject;
    /// Matches the element and moves `at` behind what it took.
    bool matchesOne(const Element& element, const Subject& subject, qsizetype& at) const;

    QString m_pattern;
    QString m_prefix;
    bool m_literal = true;
    std::vector<Element> m_elements;
};

} // namespace jet::text
