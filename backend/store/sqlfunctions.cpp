#include "store/sqlfunctions.h"

#include "store/textmatch.h"

#include <sqlite3.h>

#include <exception>

namespace kelva {

namespace {

QString textOf(sqlite3_value *value)
{
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_value_text(value));
    return QString::fromUtf8(bytes, sqlite3_value_bytes(value));
}

/// What the first argument was compiled to; kept by the statement as long as the argument is a constant.
template<typename T, typename Make>
const T &compiled(sqlite3_context *context, sqlite3_value **arguments, T &local, Make make)
{
    if (auto *kept = static_cast<T *>(sqlite3_get_auxdata(context, 0)))
        return *kept;
    sqlite3_set_auxdata(context, 0, new T(make(textOf(arguments[0]))),
                        [](void *pointer) { delete static_cast<T *>(pointer); });
    // The database may have discarded it at once, or have no room for it.
    if (auto *kept = static_cast<T *>(sqlite3_get_auxdata(context, 0)))
        return *kept;
    local = make(textOf(arguments[0]));
    return local;
}

void like(sqlite3_context *context, sqlite3_value **arguments, Qt::CaseSensitivity sensitivity)
{
    LikePattern local(QString(), sensitivity);
    const LikePattern &pattern = compiled(
        context, arguments, local, [=](const QString &text) { return LikePattern(text, sensitivity); });
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_value_text(arguments[1]));
    sqlite3_result_int(context, pattern.matches(codePointsOfUtf8(bytes, sqlite3_value_bytes(arguments[1]))));
}

void caseSensitiveLike(sqlite3_context *context, sqlite3_value **arguments)
{
    like(context, arguments, Qt::CaseSensitive);
}

void caseInsensitiveLike(sqlite3_context *context, sqlite3_value **arguments)
{
    like(context, arguments, Qt::CaseInsensitive);
}

void words(sqlite3_context *context, sqlite3_value **arguments)
{
    WordQuery local;
    const WordQuery &query = compiled(context, arguments, local, [](const QString &text) {
        Result<WordQuery> parsed = WordQuery::parse(text);
        return parsed ? parsed.value() : WordQuery();
    });
    sqlite3_result_int(context, query.matches(textOf(arguments[1])));
}

void numberAsText(sqlite3_context *context, sqlite3_value **arguments)
{
    const QByteArray text = sqlite3_value_type(arguments[0]) == SQLITE_FLOAT
                                ? numberText(sqlite3_value_double(arguments[0])).toUtf8()
                                : textOf(arguments[0]).toUtf8();
    sqlite3_result_text(context, text.constData(), text.size(), SQLITE_TRANSIENT);
}

using Function = void (*)(sqlite3_context *, sqlite3_value **);

template<Function function>
void call(sqlite3_context *context, int count, sqlite3_value **arguments)
{
    for (int i = 0; i < count; ++i)
        if (sqlite3_value_type(arguments[i]) == SQLITE_NULL)
            return sqlite3_result_null(context);
    try {
        function(context, arguments);
    } catch (const std::exception &) {
        sqlite3_result_error_nomem(context);
    }
}

template<Function function>
void add(sqlite3 *database, const char *name, int arguments)
{
    sqlite3_create_function_v2(database, name, arguments,
                               SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr, call<function>,
                               nullptr, nullptr, nullptr);
}

} // namespace

void registerSqlFunctions(sqlite3 *database)
{
    add<caseSensitiveLike>(database, "kelva_like", 2);
    add<caseInsensitiveLike>(database, "kelva_ilike", 2);
    add<words>(database, "kelva_words", 2);
    add<numberAsText>(database, "kelva_number_text", 1);
}

} // namespace kelva
