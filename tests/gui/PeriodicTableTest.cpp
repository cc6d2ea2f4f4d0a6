#include "gui/widgets/PeriodicTable.h"

#include <QAbstractButton>

#include "gui/GuiFixture.h"

namespace lodex {
namespace {

class PeriodicTableTest : public GuiTest {
 protected:
  PeriodicTableTest() {
    for (const char* symbol : {"H", "He", "Li", "Fe", "Co", "La", "Ce", "U", "", "Fe2"}) {
      list.add(symbol);
    }
    table.resize(720, 400);
    table.bind(list);
    table.show();
    settle();
  }

  QPoint centre(const char* symbol) {
    return table.findChild<QWidget*>(QStringLiteral("element%1").arg(QLatin1String(symbol)))
        ->geometry()
        .center();
  }
  std::string current() const { return list.current() < 0 ? "" : list.item(list.current()); }

  Form form{"frmTest"};
  ListBox list{form, "TarnPD1"};
  PeriodicTable table;
};

TEST_F(PeriodicTableTest, ElementsStandAtTheirPlaces) {
  EXPECT_EQ(centre("H").x(), centre("Li").x());
  EXPECT_LT(centre("H").y(), centre("Li").y());
  EXPECT_EQ(centre("He").y(), centre("H").y());
  EXPECT_GT(centre("He").x(), 680) << "in the last group";
  EXPECT_EQ(centre("Fe").y(), centre("Co").y());
  EXPECT_LT(centre("Fe").x(), centre("Co").x());
  EXPECT_GT(centre("Ce").y(), centre("La").y()) << "in the block below";
  EXPECT_GT(centre("U").y(), centre("Ce").y());
  EXPECT_EQ(centre("Fe2").y(), centre("H").y()) << "what is no element has a place too";
  EXPECT_EQ(table.cell(8), nullptr);
  EXPECT_EQ(table.cell(10), nullptr);
  EXPECT_TRUE(table.rect().contains(table.childrenRect()));
}

TEST_F(PeriodicTableTest, ClicksAndKeysChooseAndLeaveTheMarks) {
  int clicks = 0;
  list.setCommand([&](int) { ++clicks; });
  list.setChecked(3, true);
  table.refresh();
  auto* iron = dynamic_cast<QAbstractButton*>(table.cell(3));
  EXPECT_TRUE(iron->isChecked());
  EXPECT_EQ(iron->accessibleDescription(), QStringLiteral("marked"));
  QTest::mouseClick(iron, Qt::LeftButton);
  EXPECT_EQ(current(), "Fe");
  EXPECT_EQ(clicks, 1);
  EXPECT_TRUE(iron->isChecked() && list.checked(3));

  struct Case {
    int key;
    const char* chosen;
  };
  const Case cases[] = {{Qt::Key_Right, "Co"}, {Qt::Key_Right, "Co"}, {Qt::Key_Left, "Fe"},
                        {Qt::Key_Home, "H"},   {Qt::Key_Down, "Li"},  {Qt::Key_End, "Fe2"},
                        {Qt::Key_C, "Co"},     {Qt::Key_C, "Ce"},     {Qt::Key_C, "Co"},
                        {Qt::Key_X, "Co"},     {Qt::Key_Up, "Co"}};
  for (const Case& row : cases) {
    QTest::keyClick(&table, static_cast<Qt::Key>(row.key));
    EXPECT_EQ(current(), row.chosen) << "after key " << row.key;
  }
}

TEST_F(PeriodicTableTest, FollowsAListThatChangesAndIsLetGo) {
  list.clear();
  table.refresh();
  EXPECT_EQ(table.cell(0), nullptr);
  QTest::keyClick(&table, Qt::Key_Right);
  QTest::keyClick(&table, Qt::Key_A);
  list.add("Au");
  table.refresh();
  QTest::keyClick(&table, Qt::Key_Down);
  EXPECT_EQ(current(), "Au");
  table.clear();
  QTest::keyClick(&table, Qt::Key_Home);
  table.refresh();
  EXPECT_EQ(table.cell(0), nullptr);
}

}  // namespace
}  // namespace lodex
