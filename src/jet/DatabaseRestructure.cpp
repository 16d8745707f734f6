// Changes of whole tables: names, types of columns.
#include "jet/Compile.h"
#include "jet/Conversion.h"
#include "jet/DatabasePrivate.h"
#include "jet/DefinitionWriter.h"
#include "jet/text/Values.h"

#include <sqlite3.h>

namespace jet {

using namespace Qt::StringLiterals;

namespace {

const QString convertName = u"restructure_value"_s;

/// The converter as a function of the store, for as long as the table is written: restructure_value(n, value) with the
/// position of the column.
class ConverterFunction {
public:
    ConverterFunction(Store& store, const TableDef& table, const QList<Field>& fields,
                      const Database::Converter& converter)
        : m_store(store), m_table(table), m_fields(fields), m_converter(converter)
    {
        const int code = sqlite3_create_function_v2(store.handle(), convertName.toUtf8().constData(), 2, SQLITE_UTF8,
                                                    this, &ConverterFunction::run, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK)
            store.raise(code);
    }
    ~ConverterFunction()
    {
        sqlite3_create_function_v2(m_store.handle(), convertName.toUtf8().constData(), 2, SQLITE_UTF8, nullptr,
                                   nullptr, nullptr, nullptr, nullptr);
    }
    ConverterFunction(const ConverterFunction&) = delete;
    ConverterFunction& operator=(const ConverterFunction&) = delete;

    /// By the names that the columns have in the table.
    QHash<QString, QString> expressions() const
    {
        QHash<QString, QString> texts;
        for (qsizetype at = 0; at < m_fields.size(); ++at) {
            if (const Field* field = m_table.field(m_fields[at].Name))
                texts.insert(field->Name, u"%1(%2,%3)"_s.arg(convertName, QString::number(at), quoted(field->Name)));
        }
        return texts;
    }

private:
    QVariant given(qsizetype at, sqlite3_value* value) const
    {
        const Field* field = m_table.field(m_fields[at].Name);
        switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            return field->Type == DataType::Boolean ? QVariant(sqlite3_value_int64(value) != 0)
                                                    : QVariant(int(sqlite3_value_int64(value)));
        case SQLITE_FLOAT:
            return sqlite3_value_double(value);
        case SQLITE_TEXT: {
            const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
            return QString::fromUtf8(bytes, sqlite3_value_bytes(value));
        }
        default:
            return {};
        }
    }

    void give(sqlite3_context* context, qsizetype at, const QVariant& value) const
    {
        const QVariant fitting = value.isValid() ? convertFor(m_fields[at], value) : value;
        if (!fitting.isValid()) {
            if (m_fields[at].Type == DataType::Boolean)
                return sqlite3_result_int(context, 0);
            return sqlite3_result_null(context);
        }
        switch (fitting.typeId()) {
        case QMetaType::Bool:
            return sqlite3_result_int(context, fitting.toBool() ? -1 : 0);
        case QMetaType::Int:
            return sqlite3_result_int(context, fitting.toInt());
        case QMetaType::Double:
            return sqlite3_result_double(context, fitting.toDouble());
        default: {
            const QByteArray bytes = fitting.toString().toUtf8();
            sqlite3_result_text64(context, bytes.constData(), sqlite3_uint64(bytes.size()), SQLITE_TRANSIENT,
                                  SQLITE_UTF8);
        }
        }
    }

    // No exception may cross the C code of the store.
    static void run(sqlite3_context* context, int, sqlite3_value** arguments)
    {
        const auto* self = static_cast<ConverterFunction*>(sqlite3_user_data(context));
        try {
            const auto at = qsizetype(sqlite3_value_int64(arguments[0]));
            self->give(context, at, self->m_converter(self->m_fields[at].Name, self->given(at, arguments[1])));
        } catch (const Error& error) {
            const QByteArray message = (u"#%1#"_s.arg(error.number()) + error.description()).toUtf8();
            sqlite3_result_error(context, message.constData(), int(message.size()));
        } catch (const std::bad_alloc&) {
            sqlite3_result_error_nomem(context);
        }
    }

    Store& m_store;
    const TableDef m_table;
    const QList<Field>& m_fields;
    const Database::Converter& m_converter;
};

} // namespace

void Database::RenameTable(const QString& name, const QString& newName)
{
    d->change([&](DefinitionWriter& writer) { writer.renameTable(name, newName); });
}

void Database::RenameField(const QString& table, const QString& name, const Field& field)
{
    d->change([&](DefinitionWriter& writer) { writer.renameField(table, name, field); });
}

void Database::ConvertFields(const QString& table, const QList<Field>& fields, const Converter& converter)
{
    const TableDef* known = d->schema.table(table);
    if (!known)
        fail(3265, table);
    d->change([&](DefinitionWriter& writer) {
        const ConverterFunction function(d->store, *known, fields, converter);
        writer.convertFields(table, fields, function.expressions());
    });
}

} // namespace jet
