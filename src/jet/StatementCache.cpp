#include "jet/StatementCache.h"

#include "jet/sql/Parser.h"

namespace jet {

namespace {
// A compiled statement costs some kilobytes; no loop of the program runs more different ones.
constexpr size_t kept = 64;
// Longer ones are lists of values written out: nobody sends them twice.
constexpr qsizetype longestKept = 8192;
} // namespace

std::shared_ptr<CachedStatement> StatementCache::statement(const QString& text,
                                                           const Schema& schema)
{
    if (const auto found = m_byText.constFind(text); found != m_byText.cend()) {
        m_recent.splice(m_recent.begin(), m_recent, *found);
        return m_recent.front();
    }
    auto made = std::make_shared<CachedStatement>(
        CachedStatement{text, compile(sql::parseStatement(text), schema), {}});
    if (text.size() > longestKept)
        return made;
    m_recent.push_front(made);
    m_byText.insert(text, m_recent.begin());
    if (m_recent.size() > kept) {
        m_byText.remove(m_recent.back()->text);
        m_recent.pop_back();
    }
    return made;
}

void StatementCache::clear()
{
    m_byText.clear();
    m_recent.clear();
}

} // namespace jet
