#pragma once

namespace lodex {

/// Questions about a database's structure, with the numbers that callers use. Each gives a
/// recordset, ordered by table name without regard to case, with the fields
///   Columns: TABLE_NAME, COLUMN_NAME, ORDINAL_POSITION (from 1), DATA_TYPE (a FieldCode),
///            CHARACTER_MAXIMUM_LENGTH (Null for no limit), NUMERIC_PRECISION and NUMERIC_SCALE
///            (Null where they are not known), IS_NULLABLE, AUTOINCREMENT (numbered by the
///            database), DESCRIPTION (what its maker says of it, kept from Access files); views
///            included,
///   Indexes: TABLE_NAME, INDEX_NAME, PRIMARY_KEY, UNIQUE, ORDINAL_POSITION (from 1),
///            COLUMN_NAME; the primary key's columns in their order in the key,
///   Tables:  TABLE_NAME, TABLE_TYPE ("TABLE" or "VIEW"),
///   ForeignKeys, a record per pair of fields, by the referring table: PK_TABLE_NAME,
///            PK_COLUMN_NAME ("" for the primary key), FK_TABLE_NAME, FK_COLUMN_NAME, ORDINAL (from
///            1), FK_NAME (each name once per referring table).
/// What the database keeps for itself is left out.
enum class SchemaKind { Columns = 4, Indexes = 12, Tables = 20, ForeignKeys = 27 };

}  // namespace lodex
