#include "clause/clauseparser.h"

#include "clause/clausescanner.h"

namespace kelva {

namespace {

using Place = ClauseScanner::Place;

/// Every function takes what its name says and returns false once something is refused.
class ClauseParser
{
public:
    explicit ClauseParser(const QString &clause) : m_clause(clause), m_scanner(clause) {}

    Result<ClauseNode> parse();

private:
    bool checkCharacters();
    bool parseOr(ClauseNode *node);
    bool parseAnd(ClauseNode *node);
    bool parseNot(ClauseNode *node);
    bool parsePredicate(ClauseNode *node);
    bool parseWordMatch(ClauseNode *node);
    bool parseBehindLeft(ClauseNode *node);
    bool parseList(ClauseNode *node);
    bool parseOperand(ClauseOperand *operand, Place place);
    bool parseQuoted(ClauseOperand *operand, Place place);
    /// Neither takes nor refuses anything when no literal comes next.
    bool parseLiteral(ClauseOperand *operand, Place place, bool *found);

    bool take(const char *symbol) { return m_scanner.takeSymbol(QLatin1String(symbol)); }
    bool takeWord(const char *keyword) { return m_scanner.takeKeyword(QLatin1String(keyword)); }
    bool expect(const char *symbol);
    bool expected(const QString &what);
    bool refuse(int index, const QString &reason);
    int next();

    const QString &m_clause;
    ClauseScanner m_scanner;
    int m_depth = 0;
    int m_predicates = 0;
    Error m_error;
};

Result<ClauseNode> ClauseParser::parse()
{
    ClauseNode root;
    if (!checkCharacters() || !parseOr(&root))
        return m_error;
    if (!m_scanner.atEnd()) {
        expected(QStringLiteral("AND, OR or the end"));
        return m_error;
    }
    return root;
}

bool ClauseParser::checkCharacters()
{
    if (m_clause.size() > clauselimits::characters)
        return refuse(clauselimits::characters,
                      QStringLiteral("it is longer than %1 characters").arg(clauselimits::characters));
    for (int i = 0; i < m_clause.size(); ++i) {
        const ushort character = m_clause.at(i).unicode();
        const bool pair = QChar::isHighSurrogate(character) && i + 1 < m_clause.size() &&
                          m_clause.at(i + 1).isLowSurrogate();
        // U+FEFF separates the fields of a record, so no field holds it; the others are no characters.
        if (character == 0 || character == 0xfeff || character >= 0xfffe ||
            (QChar::isSurrogate(character) && !pair))
            return refuse(i, QStringLiteral("there is a character that no text can hold"));
        if (pair)
            ++i;
    }
    return true;
}

bool ClauseParser::parseOr(ClauseNode *node)
{
    ClauseNode first;
    if (!parseAnd(&first))
        return false;
    node->kind = ClauseNode::Kind::Or;
    node->position = first.position;
    node->children.push_back(std::move(first));
    while (takeWord("or")) {
        node->children.emplace_back();
        if (!parseAnd(&node->children.back()))
            return false;
    }
    if (node->children.size() == 1) {
        ClauseNode only = std::move(node->children.front());
        *node = std::move(only);
    }
    return true;
}

bool ClauseParser::parseAnd(ClauseNode *node)
{
    ClauseNode first;
    if (!parseNot(&first))
        return false;
    node->kind = ClauseNode::Kind::And;
    node->position = first.position;
    node->children.push_back(std::move(first));
    while (takeWord("and")) {
        node->children.emplace_back();
        if (!parseNot(&node->children.back()))
            return false;
    }
    if (node->children.size() == 1) {
        ClauseNode only = std::move(node->children.front());
        *node = std::move(only);
    }
    return true;
}

bool ClauseParser::parseNot(ClauseNode *node)
{
    const int position = next() + 1;
    bool negative = false;
    while (takeWord("not"))
        negative = !negative;
    if (negative) {
        node->kind = ClauseNode::Kind::Not;
        node->position = position;
        node->children.emplace_back();
        node = &node->children.back();
    }
    const int opening = next();
    if (!take("("))
        return parsePredicate(node);
    if (++m_depth > clauselimits::nesting)
        return refuse(opening,
                      QStringLiteral("parentheses are nested deeper than %1").arg(clauselimits::nesting));
    if (!parseOr(node))
        return false;
    --m_depth;
    return take(")") || expected(QStringLiteral("AND, OR or \")\""));
}

bool ClauseParser::parsePredicate(ClauseNode *node)
{
    node->position = next() + 1;
    if (++m_predicates > clauselimits::predicates)
        return refuse(next(),
                      QStringLiteral("there are more than %1 conditions").arg(clauselimits::predicates));
    if (takeWord("to_tsvector"))
        return parseWordMatch(node);
    return parseOperand(&node->left, Place::LeftOperand) && parseBehindLeft(node);
}

bool ClauseParser::parseWordMatch(ClauseNode *node)
{
    node->kind = ClauseNode::Kind::WordMatch;
    if (!expect("("))
        return false;
    node->left.kind = ClauseOperand::Kind::Field;
    node->left.position = next() + 1;
    if (!m_scanner.takeName(&node->left.text))
        return expected(QStringLiteral("a field"));
    if (!expect(")") || !expect("@@"))
        return false;
    if (!takeWord("to_tsquery"))
        return expected(QStringLiteral("to_tsquery"));
    if (!expect("("))
        return false;
    if (!m_scanner.isQuote())
        return expected(QStringLiteral("a quoted text"));
    return parseQuoted(&node->right, Place::WordQuery) && expect(")");
}

bool ClauseParser::parseBehindLeft(ClauseNode *node)
{
    // Longer signs first.
    const struct
    {
        const char *sign;
        Comparator comparator;
    } comparators[] = {
        {"<=", Comparator::LessOrEqual}, {">=", Comparator::GreaterOrEqual},
        {"!=", Comparator::NotEqual},    {"=", Comparator::Equal},
        {"<", Comparator::Less},         {">", Comparator::Greater},
    };
    for (const auto &candidate : comparators) {
        if (take(candidate.sign)) {
            node->kind = ClauseNode::Kind::Compare;
            node->comparator = candidate.comparator;
            return parseOperand(&node->right, Place::RightOperand);
        }
    }
    if (takeWord("is")) {
        node->kind = ClauseNode::Kind::IsNull;
        node->negated = takeWord("not");
        return takeWord("null") || expected(QStringLiteral("NULL"));
    }
    node->negated = takeWord("not");
    node->ignoreCase = takeWord("ilike");
    if (node->ignoreCase || takeWord("like")) {
        node->kind = ClauseNode::Kind::Like;
        return parseOperand(&node->right, Place::RightOperand);
    }
    if (takeWord("in"))
        return parseList(node);
    return expected(node->negated ? QStringLiteral("LIKE, ILIKE or IN") : QStringLiteral("a comparison"));
}

bool ClauseParser::parseList(ClauseNode *node)
{
    node->kind = ClauseNode::Kind::In;
    if (!expect("("))
        return false;
    do {
        bool found = false;
        node->list.emplace_back();
        if (!parseLiteral(&node->list.back(), Place::List, &found))
            return false;
        if (!found)
            return expected(QStringLiteral("a value"));
    } while (take(","));
    return take(")") || expected(QStringLiteral("\",\" or \")\""));
}

bool ClauseParser::parseOperand(ClauseOperand *operand, Place place)
{
    bool found = false;
    if (!parseLiteral(operand, place, &found))
        return false;
    if (!found) {
        operand->kind = ClauseOperand::Kind::Field;
        if (!m_scanner.takeName(&operand->text))
            return expected(QStringLiteral("a field or a value"));
    }
    if (!take("::"))
        return true;
    operand->asText = true;
    return takeWord("varchar") || expected(QStringLiteral("varchar"));
}

bool ClauseParser::parseLiteral(ClauseOperand *operand, Place place, bool *found)
{
    operand->position = next() + 1;
    *found = true;
    if (m_scanner.isQuote())
        return parseQuoted(operand, place);
    if (m_scanner.takeNumber(&operand->text)) {
        operand->kind = ClauseOperand::Kind::Number;
    } else if (takeWord("null")) {
        operand->kind = ClauseOperand::Kind::Null;
    } else if (takeWord("true")) {
        operand->kind = ClauseOperand::Kind::Boolean;
        operand->text = QStringLiteral("true");
    } else if (takeWord("false")) {
        operand->kind = ClauseOperand::Kind::Boolean;
        operand->text = QStringLiteral("false");
    } else {
        *found = false;
    }
    return true;
}

bool ClauseParser::parseQuoted(ClauseOperand *operand, Place place)
{
    operand->kind = ClauseOperand::Kind::Text;
    operand->position = next() + 1;
    return m_scanner.takeQuoted(place, m_depth, &operand->text) ||
           refuse(next(), QStringLiteral("the quoted text that begins here does not end"));
}

int ClauseParser::next()
{
    m_scanner.atEnd();
    return m_scanner.position();
}

bool ClauseParser::expect(const char *symbol)
{
    return take(symbol) || expected(QStringLiteral("\"%1\"").arg(QLatin1String(symbol)));
}

bool ClauseParser::expected(const QString &what)
{
    const QString met = m_scanner.met();
    return refuse(next(), QStringLiteral("%1 is expected, but %2 was met").arg(what, met));
}

bool ClauseParser::refuse(int index, const QString &reason)
{
    m_error = clauseError(index + 1, reason);
    return false;
}

} // namespace

Result<ClauseNode> parseClause(const QString &clause)
{
    return ClauseParser(clause).parse();
}

Error clauseError(int position, const QString &reason)
{
    return {ErrorCode::BadInput,
            QStringLiteral("The search condition is wrong at position %1: %2.").arg(position).arg(reason)};
}

} // namespace kelva
