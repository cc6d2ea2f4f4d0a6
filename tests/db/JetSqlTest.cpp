#include <gmock/gmock.h>

#include "DatabaseFixture.h"
#include "db/sql/JetLike.h"
#include "db/sql/JetSql.h"

namespace lodex {
namespace {

using testing::HasSubstr;

class JetSqlTest : public DatabaseFixture {};

TEST_F(JetSqlTest, ComputesExpressions) {
  const struct {
    std::string expression, value;
  } rows[] = {
      {"1 + 2 * 3 - 4 / 8", "6.5"},
      {"7 / 2", "3.5"},
      {"-2 ^ 2", "-4"},
      {"2 ^ -1", "0.5"},
      {"- -3", "3"},
      {"17 \\ 5 & '/' & 17 Mod 5", "3/2"},
      {"2 + 3 & 'x'", "5x"},
      {"'a' & Null & 0.5", "a0.5"},
      {"'it''s ' & \"a \"\"b\"\"\"", "it's a \"b\""},
      {"IIf(1 > 2, 'yes', 'no')", "no"},
      {"IIf(Null, 1, 2)", "2"},
      {"Nz(Null, 7) + Nz(3, 7)", "10"},
      {"Switch(1 = 2, 'a', True, 'b')", "b"},
      {"Choose(2, 'a', 'b', 'c')", "b"},
      {"IsNull(Null)", "-1"},
      {"2 = 2", "-1"},
      {"Not 2 = 2", "0"},
      {"(2 = 2) = True", "-1"},
      {"1 = 1 Xor 2 = 2", "0"},
      {"5 Between 1 And 9 And 3 In (1, 2, 3)", "-1"},
      {"Round(0.5) & Round(1.5) & Round(2.345, 2)", "022.34"},
      {"Int(-1.5) & Fix(-1.5) & Sgn(-3)", "-2-1-1"},
      {"Round(Log(Exp(2)), 9) + Sqr(9) + Abs(-1)", "6"},
      {"CLng('2.5') & CInt(3.5) & CCur(0.00005)", "240"},
      {"Val('12.5 ppm') + Val('none')", "12.5"},
      {"Left('Åland', 2) & Right('abc', 1) & Mid('abcdef', 3, 2)", "Ålccd"},
      {"Left$('abc', 9) & Mid('abc', 9)", "abc"},
      {"Len('Åäö') & InStr('Pyrite', 'R') & InStr(3, 'aXbX', 'x')", "334"},
      {"UCase('åb') & LCase('ÅB') & Trim(' a ')", "ÅBåba"},
      {"#1/31/2020#", "2020-01-31"},
      {"#31/1/2020# & #1-31-2020# & #1/2/2020#", "2020-01-312020-01-312020-01-02"},
      {"#2020-01-31 1:05 PM#", "2020-01-31 13:05:00"},
      {"Year(#1/31/2020#) & Month('31.1.2020') & Day(#2020-02-29#)", "2020129"},
      {"Second('2020-01-31 09:30:12.1234567') & Year('0012-01-31') & Year('12-01-31')", "12122012"},
      {"DateSerial(2020, 14, 0)", "2021-01-31"},
      {"DateAdd('m', 1, #2020-01-31#)", "2020-02-29"},
      {"DateAdd('h', -1, #2020-01-01#)", "2019-12-31 23:00:00"},
      {"DateDiff('d', #2020-02-01#, #2020-03-01#)", "29"},
      {"DateDiff('yyyy', #2020-12-31#, #2021-01-01#)", "1"},
      {"DatePart('m', #2020-05-01#, 1, 0) & Format(#2020-05-01#, 'yyyy', 1, 1)", "52020"},
      {"DatePart('q', #2020-05-01#) & Weekday(#2026-11-21#)", "27"},
      {"Format(1234.5, '#,##0.00')", "1,234.50"},
      {"Format(0.1234, '0.0%')", "12.3%"},
      {"Format(1234.5, 'fixed') & Format(#2026-11-21#, 'ddd q') & Format(0.5, 'Percent')",
       "1234.50Sat 450.00%"},
      {"Format(5, '000') & Format(1.5, '0.##') & Format(2, '0.##')", "0051.52"},
      {"Format(#2020-01-31 9:05#, 'yyyy-mm-dd hh:mm')", "2020-01-31 09:05"},
      {"Format(-1.5, '0.00;(0.00);zero') & Format(0, '0.00;(0.00);\"zero\"')", "(1.50)zero"},
      {"Format(1.5, 'Currency') & Format(1, 'Yes/No') & Format(False, 'On/Off')", "1.50YesOff"},
      {"Format(0.00123, 'Scientific') & Format(7, '0 \"days\"') & Format('ab', '>')",
       "1.23E-037 daysAB"},
      {"Format(#2020-01-31 15:04#, 'h:nn AM/PM \"hmy\"') & Format(#2020-02-01#, ' ww y')",
       "3:04 PM hmy 5 32"},
      {"'1' + '2' & 'a' + Null & ('a' + 'b')", "12ab"},
      {"'5' + 3 - 1", "7"},
      {"'a' + 1 Is Null", "-1"},
      {"#2020-01-31# + 1 & '|' & (#2020-01-31 12:00# - 0.25)", "2020-02-01|2020-01-31 06:00:00"},
      {"#2020-03-01# - #2020-02-01# & '|' & (#2020-01-01 18:00# - #2020-01-01#) * 24", "29|18"},
      {"#2020-01-31# + TimeSerial(10, 5, 0)", "2020-01-31 10:05:00"},
      {"#9999-12-31# + 1 Is Null", "-1"},
      {"9223372036854775807 + 1 - '0'", "9.22337203685478E+18"},
      {"Int(#2020-01-31 10:00#) & '|' & CLng(#2020-01-31#) & '|' & CDbl(#1900-01-01 6:00#)",
       "2020-01-31|43861|2.25"},
      {"Left('London', 3) = 'LON' And 'A' In ('b', 'a') And 'B' Between 'a' And 'c'", "-1"},
      {"Hex(255) & Oct(8) & InStrRev('abcAb', 'a') & StrReverse('åb')", "FF104bå"},
      {"'Pyrite' ALike 'PY*' And 'x' Not ALike 'y%'", "-1"},
      {"CStr(1.0) & Str(2)", "1 2"},
      {"String(3, 'x') & MonthName(2) & WeekdayName(1)", "xxxFebruarySunday"},
      {"Weekday(#2026-11-21#, 2) & TimeSerial(1, 2, 3) & InStr(1, 'aBc', 'b', 1)", "601:02:032"},
      {"Round(Atn(1) * 4, 4) & FormatPercent(0.125) & Rnd() * 0", "3.141612.50%0"},
      {"(SELECT Max(x) FROM (SELECT 3 AS x UNION SELECT 4))", "4"},
      {"Exists (SELECT 1 AS x WHERE 1 = 2)", "0"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(errorOf([&] {
                EXPECT_EQ(records("SELECT " + row.expression + " AS v"), row.value)
                    << row.expression;
              }),
              "(no error)")
        << row.expression;
  }
}

TEST_F(JetSqlTest, ReadsTheQueriesThatUsersWrite) {
  run("CREATE TABLE [Sample s] ([No] LONG, [Site Name] TEXT (50), [Day] DATE, [Ok] BOOLEAN)");
  run("CREATE TABLE [Assay] ([No] LONG, [Cu %] SINGLE)");
  run("INSERT INTO [Sample s] VALUES (1, 'North', #1/31/2020#, True)");
  run("INSERT INTO [Sample s] VALUES (2, 'south_1', #12/1/2021#, False)");
  run("INSERT INTO [Sample s] ([No], [Site Name]) VALUES (3, Null)");
  run("INSERT INTO [Assay] VALUES (1, 0.5), (1, 1.5), (2, 7)");
  std::string sum;
  for (int i = 0; i < 125; ++i) sum += " + No";
  const struct {
    std::string sql, records;
  } rows[] = {
      {"SELECT [S].[No] FROM [Sample s] AS S WHERE S.[Site Name] Like 'n*'", "1"},
      {"SELECT No FROM [Sample s] WHERE [Site Name] Like \"*[0-9]\"", "2"},
      {"SELECT No FROM [Sample s] WHERE [Site Name] Not Like '%orth'", "2"},
      {"SELECT No FROM [Sample s] WHERE [Site Name] Is Null", "3"},
      {"SELECT No FROM [Sample s] WHERE [Day] > #6/1/2020#", "2"},
      {"SELECT No FROM [Sample s] WHERE Ok = True", "1"},
      {"SELECT No FROM [Sample s] WHERE Ok <> Yes OR Ok = False", "(error)"},
      {"SELECT No FROM [Sample s] WHERE Ok = False", "2;3"},
      {"SELECT TOP 1 [No] FROM [Sample s] ORDER BY [No] DESC;", "3"},
      {"SELECT TOP 50 PERCENT [No] FROM [Sample s] ORDER BY [No]", "1;2"},
      {"SELECT TOP 1 No FROM Assay ORDER BY No", "1;1"},
      {"SELECT TOP 1 No * 2 AS n, [Cu %] FROM Assay ORDER BY n", "2|0.5;2|1.5"},
      {"SELECT DISTINCT TOP 1 No FROM Assay ORDER BY 1", "1"},
      {"SELECT TOP 1 No, Count(*) FROM Assay GROUP BY No ORDER BY Count(*) DESC", "1|2"},
      {"SELECT TOP 2 * FROM Assay ORDER BY 2 DESC", "2|7;1|1.5"},
      {"SELECT TOP 34 PERCENT No FROM Assay ORDER BY No DESC", "2;1;1"},
      {"SELECT * FROM (SELECT TOP 1 No FROM Assay ORDER BY No) AS a", "1;1"},
      {"SELECT Count(*) FROM [SELECT DISTINCT No FROM Assay]. AS a", "2"},
      {"SELECT [SELECT 1].[No] FROM [Assay] AS [SELECT 1] WHERE [SELECT 1].No = 2", "2"},
      {"SELECT [Day] + 30 FROM [Sample s] WHERE [Day] - 1 = #1/30/2020#", "2020-03-01"},
      {"SELECT No" + sum + " FROM Assay WHERE No = 2", "252"},
      {"SELECT TOP 1 No FROM Assay WHERE [Cu %] > 1 UNION SELECT No + 10 AS n FROM [Sample s]",
       "1;11;12;13"},
      {"SELECT No * 2 AS twice, twice + 1 AS more, UCase([Site Name]) AS [Site Name] "
       "FROM [Sample s] WHERE twice = 2",
       "2|3|NORTH"},
      {"SELECT DISTINCTROW [No] FROM [Sample s] WHERE ([No] IN (1,3)) ORDER BY 1 ASC", "1;3"},
      {"SELECT [Sample s].[No],[Assay].* FROM ([Sample s] LEFT JOIN [Assay] ON "
       "[Sample s].[No]=[Assay].[No]) ORDER BY  [Sample s].[No], 3",
       "1|1|0.5;1|1|1.5;2|2|7;3||"},
      {"SELECT A.No, B.No, C.No FROM ([Sample s] A INNER JOIN Assay B ON A.No = B.No) INNER JOIN "
       "[Assay] C ON C.No = A.No WHERE B.[Cu %] > 1 AND C.[Cu %] > 1",
       "1|1|1;2|2|2"},
      {"SELECT DISTINCT [Sample s].[No] FROM [Sample s], [Assay] WHERE [Assay]![No] = "
       "[Sample s]![No] ORDER BY 1 ASC",
       "1;2"},
      {"SELECT First([Cu %]), Last([Cu %]), Count(*), StDev([Cu %]) FROM Assay GROUP BY No "
       "HAVING Count(*) > 1",
       "0.5|1.5|2|0.707106781186548"},
      {"SELECT No FROM Assay UNION ALL SELECT [No] FROM [Sample s] ORDER BY 1", "1;1;1;2;2;3"},
      {"SELECT No FROM [Sample s] WHERE No NOT IN (SELECT No FROM Assay)", "3"},
  };
  for (const auto& row : rows) {
    if (row.records == "(error)") {
      EXPECT_THAT(errorOfSql(row.sql), HasSubstr("Yes")) << row.sql;
      continue;
    }
    EXPECT_EQ(errorOf([&] { EXPECT_EQ(records(row.sql), row.records) << row.sql; }), "(no error)");
  }
  EXPECT_EQ(show("SELECT No + 1, [Site Name], 2 * 3 FROM [Sample s] WHERE No = 1"),
            "Expr1000|Site Name|Expr1001\n2|North|6");
}

TEST_F(JetSqlTest, TransformMakesColumnsOfValues) {
  run("CREATE TABLE [Part C] ([Particle ID] LONG, [Weight%] DOUBLE, [Mineral ID] LONG)");
  run("INSERT INTO [Part C] VALUES (1,50,10),(1,25,2),(1,25,2),(2,100,10),(3,1,0),(4,8,Null)");
  EXPECT_EQ(
      show("TRANSFORM Sum([Part C].[Weight%]/100) AS SumOfWt SELECT [Part C].[Particle ID], "
           "Count([Part C].[Weight%]) AS [Rows], First([Part C].[Mineral ID]) AS FirstMineral "
           "From [Part C] WHERE (([Part C].[Mineral ID])<>0) GROUP BY [Part C].[Particle ID] "
           "PIVOT [Part C].[Mineral ID]"),
      "Particle ID|Rows|FirstMineral|2|10\n1|3|10|0.5|0.5\n2|1|10||1");
  EXPECT_EQ(show("TRANSFORM Count(*) SELECT [Particle ID] FROM [Part C] WHERE [Particle ID] > 1 "
                 "GROUP BY [Particle ID] ORDER BY [Particle ID] DESC PIVOT [Mineral ID]"),
            "Particle ID|<>|0|10\n4|1||\n3||1|\n2|||1");
  run("CREATE VIEW Crossed AS TRANSFORM Sum([Weight%]) SELECT [Particle ID] FROM [Part C] WHERE "
      "[Mineral ID] > 0 GROUP BY [Particle ID] PIVOT [Mineral ID]");
  EXPECT_EQ(show("SELECT * FROM Crossed WHERE [2] > 0"), "Particle ID|2|10\n1|50|50");
  EXPECT_EQ(show("TRANSFORM Max([Weight%]) SELECT [Particle ID] FROM [Part C] WHERE "
                 "[Particle ID] = 1 GROUP BY [Particle ID] PIVOT 'M' & [Mineral ID] IN "
                 "('M2', 'it''s ]')"),
            "Particle ID|M2|it's ]\n1|25|");
}

TEST_F(JetSqlTest, FirstAndLastOfATransformAreThoseOfTheirColumn) {
  run("CREATE TABLE [Long] ([SampleNo] TEXT (9), [Element] TEXT (9), [Value] SINGLE)");
  run("INSERT INTO [Long] VALUES ('A', 'Cu', 1), ('A', 'Fe', 2), ('A', 'Fe', 3), "
      "('B', 'Fe', Null), ('B', 'Fe', 4), ('B', 'Cu', 5), ('B', 'Cu', Null)");
  const std::string query =
      "([Value]) SELECT [SampleNo] FROM [Long] GROUP BY [SampleNo] PIVOT [Element]";
  EXPECT_EQ(show("TRANSFORM First" + query), "SampleNo|Cu|Fe\nA|1|2\nB|5|");
  EXPECT_EQ(show("TRANSFORM Last" + query), "SampleNo|Cu|Fe\nA|1|3\nB||4");
}

TEST_F(JetSqlTest, AStatementThatFailsChangesNothing) {
  run("CREATE TABLE [T] ([a] LONG, [c] TEXT (5))");
  run("INSERT INTO [T] VALUES (1, 'x'), (1, 'y')");
  run("CREATE VIEW [V] AS SELECT [c] FROM [T]");
  const auto all = [&] {
    return structure(SchemaKind::Tables) + structure(SchemaKind::Columns) +
           structure(SchemaKind::Indexes) + records("SELECT * FROM [T]");
  };
  const std::string before = all();
  for (const char* statement : {
           "ALTER TABLE [T] ADD COLUMN [b] LONG, [a] LONG",
           "ALTER TABLE [T] DROP COLUMN [nothing]",
           "CREATE UNIQUE INDEX [i] ON [T] ([a])",
           "CREATE UNIQUE INDEX [i] ON [T] ([a]) WITH PRIMARY",
           "SELECT [a] INTO [T] FROM [T]",
           "SELECT Asc('') AS [n] INTO [New] FROM [T]",
           "CREATE TABLE [New] ([a] LONG, [A] LONG)",
           "INSERT INTO [T] VALUES (2, 'z'), (3, 'too long')",
           "UPDATE [T] SET [c] = [c] & 'longer'",
       }) {
    EXPECT_NE(errorOf([&] { run(statement); }), "(no error)") << statement;
    EXPECT_EQ(all(), before) << statement;
  }
}

TEST_F(JetSqlTest, WritesRecords) {
  run("CREATE TABLE [T 1] ([a] LONG, [b] TEXT)");
  EXPECT_EQ(connection_.Execute("INSERT INTO [T 1] ([a],[b]) VALUES (1,'x')"), 1);
  EXPECT_EQ(connection_.Execute("INSERT INTO [T 1] SELECT a + 1 AS a, b FROM [T 1]"), 1);
  EXPECT_EQ(connection_.Execute("UPDATE [T 1] SET [T 1].[b] = [b] & '!' WHERE [a] = 2"), 1);
  EXPECT_EQ(records("SELECT * FROM [T 1]"), "1|x;2|x!");
  run("SELECT [a], [b] INTO [T 2] FROM [T 1] WHERE [a] > 1");
  EXPECT_EQ(show("SELECT * FROM [T 2]"), "a|b\n2|x!");
  EXPECT_EQ(connection_.OpenRecordset("SELECT * FROM [T 2]")->Fields()[0].type.code,
            FieldCode::Integer);
  EXPECT_EQ(connection_.Execute("DELETE * FROM [T 1] WHERE [b] Like 'x'"), 1);
  EXPECT_EQ(connection_.Execute("DELETE [T 1].* FROM [T 1]"), 1);
  run("CREATE VIEW Chained AS SELECT a * 10 AS ten, ten + 1 AS more FROM [T 2]");
  EXPECT_EQ(records("SELECT * FROM Chained"), "20|21");
  run("CREATE VIEW f_Two AS SELECT * FROM [T 2] WHERE IIf([a] = 2, True, False) = True");
  EXPECT_EQ(records("SELECT * FROM [f_Two]"), "2|x!");
  run("DROP VIEW [f_Two]");
  run("ALTER TABLE [T 2] ADD CONSTRAINT k PRIMARY KEY (a)");
  EXPECT_THAT(errorOf([&] { run("INSERT INTO [T 2] (a) VALUES (2)"); }), HasSubstr("same [a]"));
  run("DROP INDEX k ON [T 2]");
  EXPECT_THAT(errorOfSql("SELECT * FROM [f_Two]"), HasSubstr("f_Two"));
}

TEST_F(JetSqlTest, ChangesOneTableOfAJoin) {
  run("CREATE TABLE [Assay s] ([No] LONG, [Cu] SINGLE, [Site] TEXT)");
  run("CREATE TABLE [Sites] ([No] LONG, [Name] TEXT, [Factor] SINGLE)");
  run("INSERT INTO [Assay s] VALUES (1, 1, Null), (1, 2, Null), (2, 3, 'old'), (3, 4, 'old')");
  run("INSERT INTO [Sites] VALUES (1, 'North', 10), (3, 'South', 0.5)");
  EXPECT_EQ(connection_.Execute("UPDATE [Assay s] AS a INNER JOIN Sites ON a.No = Sites.No SET "
                                "a.[Cu] = a.Cu * [Factor], a.Site = [Name] WHERE Sites.No < 3"),
            2);
  EXPECT_EQ(records("SELECT * FROM [Assay s]"), "1|10|North;1|20|North;2|3|old;3|4|old");
  EXPECT_EQ(connection_.Execute("UPDATE Sites RIGHT JOIN [Assay s] ON Sites.No = [Assay s].No SET "
                                "[Assay s].Site = 'none' WHERE Sites.No Is Null"),
            1);
  EXPECT_EQ(connection_.Execute("UPDATE [Assay s], Sites SET [Assay s].Site = '3' WHERE "
                                "[Assay s].No = Sites.No And Sites.No = 3"),
            1);
  EXPECT_EQ(records("SELECT Site FROM [Assay s]"), "North;North;none;3");
  EXPECT_EQ(connection_.Execute("DELETE DISTINCTROW [Assay s].* FROM [Assay s] INNER JOIN Sites ON "
                                "[Assay s].No = Sites.No WHERE Sites.Name Like 'N*'"),
            2);
  EXPECT_EQ(records("SELECT No FROM [Assay s]"), "2;3");
}

TEST_F(JetSqlTest, ParametersAreTakenByTheirOrder) {
  run("CREATE TABLE [T] ([a] LONG, [b] LONG)");
  run("INSERT INTO T VALUES (1, 2), (2, 3), (3, 5)");
  const std::string sql =
      "PARAMETERS [From No] Long, Least Short; SELECT a FROM T WHERE b >= Least And "
      "a > [from no] And T.b > Least - 1";
  const auto rows = connection_.OpenRecordset(sql, CursorKind::Client, {std::int64_t{1}, 5.0});
  EXPECT_EQ(rows->Text(0), "3");
  EXPECT_THAT(errorOfSql(sql), HasSubstr("takes 2 parameters, not 0"));
}

TEST_F(JetSqlTest, FaultsNameTheirPlace) {
  const struct {
    std::string sql, reason;
  } rows[] = {
      {"SELECT * FORM [t]", "line 1, column 10, \"FORM\""},
      {"SELECT a\nFROM t\nWHERE = 1", "line 3, column 7, \"=\""},
      {"SELECT 'Åäö', )", "line 1, column 15, \")\""},
      {"SELECT (1 + 2", "the end: \")\" is expected"},
      {"SELECT [a FROM t", "column 8"},
      {"SELECT 'a FROM t", "not closed by its quote"},
      {"SELECT #31/31/2020#", "no date"},
      {"SELECT IIf(1, 2)", "IIF does not take"},
      {"SELECT a FROM t WHERE a ~ 1", "\"~\""},
      {"SELECT TOP x * FROM t", "TOP needs a whole number"},
      {"TRANSFORM a SELECT b FROM t GROUP BY b PIVOT c", "TRANSFORM needs"},
      {"CREATE PROCEDURE p", "CREATE makes"},
      {"ATTACH 'x' AS y", "no statement begins"},
      {"UPDATE a INNER JOIN b ON a.x = b.x SET y = 1", "which table"},
      {"UPDATE a INNER JOIN b ON a.x = b.x SET a.y = 1, b.y = 1", "one table"},
      {"DELETE * FROM a INNER JOIN b ON a.x = b.x", "column 15, \"a\": say which table"},
      {"SELECT * FROM a IN 'other.mdb'", "another database"},
      {"ALTER TABLE a ADD CONSTRAINT k FOREIGN KEY (x) REFERENCES b", "PRIMARY KEY and UNIQUE"},
      {"SELECT 1; DROP TABLE t", "behind the end"},
      {"SELECT " + std::string(5000, '('), "nested too deeply"},
      {"SELECT NoSuch(1)", "NoSuch"},
      {"SELECT CInt(40000)", "40000 is beyond -32768 to 32767"},
  };
  for (const auto& row : rows) {
    EXPECT_THAT(errorOfSql(row.sql), HasSubstr(row.reason)) << row.sql.substr(0, 60);
  }
}

TEST(JetSqlForServers, UsesStandardTerms) {
  const struct {
    std::string sql, expected;
  } rows[] = {
      {"SELECT TOP 2 [Cu %] FROM [Lab t] WHERE [ok] = True ORDER BY 1",
       "SELECT \"Cu %\" FROM \"Lab t\" WHERE \"ok\" = TRUE ORDER BY 1 FETCH FIRST 2 ROWS WITH "
       "TIES"},
      {"SELECT a & 'x', UCase(b) AS u FROM t AS s",
       "SELECT concat(a, 'x') AS \"Expr1000\", UPPER(b) AS \"u\" FROM t \"s\""},
      {"SELECT a FROM t WHERE b Like 'py*_?' AND d > #1/31/2020#",
       "SELECT a FROM t WHERE UPPER(b) LIKE UPPER('py%__') AND d > TIMESTAMP '2020-01-31'"},
      {"UPDATE [t] SET [t].[a \"b\"] = IIf(x Is Null, 1, 2)",
       "UPDATE \"t\" SET \"a \"\"b\"\"\" = CASE WHEN x IS NULL THEN 1 ELSE 2 END"},
      {"DELETE * FROM [t]", "DELETE FROM \"t\""},
  };
  for (const auto& row : rows) EXPECT_EQ(readJetSql(row.sql, SqlTarget::Server).sql, row.expected);
}

TEST(JetLike, KnowsBothFamiliesOfWildCards) {
  const struct {
    std::string text, pattern;
    bool fits;
  } rows[] = {
      {"Pyrite", "py*", true},
      {"Pyrite", "%RITE", true},
      {"Pyrite", "p?rit_", true},
      {"Pyrite", "p?rite?", false},
      {"A7", "a#", true},
      {"AB", "a#", false},
      {"Å1", "?[0-9]", true},
      {"x", "[!a-f]", true},
      {"c", "[!a-f]", false},
      {"*", "[*]", true},
      {"a", "[*]", false},
      {"[a", "[a", true},
      {"]", "[]]", true},
      {"", "*", true},
      {"", "?", false},
      {"A0", "[A-C][0-9]", true},
      {"c9", "[A-C][0-9]", true},
      {"D0", "[A-C][0-9]", false},
      {"B:", "[A-C][0-9]", false},
      {"@5", "[A-C][0-9]", false},
      {"C", "[!A-C]", false},
      {"C-", "[A-C]-", true},
      {"8", "[!0-79]", true},
      {"9", "[!0-79]", false},
      {"-", "[a-]", true},
      {"ab", "a", false},
      {"\\Cu\\Fe\\", "%\\Fe\\%", true},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(jetLike(row.text, row.pattern), row.fits) << row.text << " like " << row.pattern;
  }
}

}  // namespace
}  // namespace lodex
