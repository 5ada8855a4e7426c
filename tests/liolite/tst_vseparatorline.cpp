#include <liolite/vdrawhelper.h>
#include <liolite/vlitestyle.h>
#include <liolite/vseparatorline.h>

#include <QtTest>

class tst_VSeparatorLine : public QObject
{
    Q_OBJECT

private slots:
    void paintsCentredLine_data();
    void paintsCentredLine();
};

void tst_VSeparatorLine::paintsCentredLine_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("lineWidth");
    QTest::addColumn<double>("factor");
    QTest::addColumn<int>("painted");
    QTest::addColumn<QString>("theme");

    QTest::newRow("vertical_in_wider_widget") << int(Qt::Vertical) << QSize(9, 12) << 1 << 1.0 << 1 << "light";
    QTest::newRow("horizontal_thick") << int(Qt::Horizontal) << QSize(20, 9) << 3 << 1.0 << 3 << "light";
    QTest::newRow("horizontal_scaled") << int(Qt::Horizontal) << QSize(20, 9) << 2 << 1.5 << 3 << "light";
    QTest::newRow("zero_width_draws_one") << int(Qt::Horizontal) << QSize(20, 5) << 0 << 1.0 << 1 << "light";
    QTest::newRow("thicker_than_widget_clipped") << int(Qt::Vertical) << QSize(2, 12) << 4 << 1.0 << 2 << "light";
    // The dark theme's colour differs from the light one.
    QTest::newRow("dark_theme") << int(Qt::Horizontal) << QSize(10, 1) << 1 << 1.0 << 1 << "dark";
}

void tst_VSeparatorLine::paintsCentredLine()
{
    QFETCH(int, orientation);
    QFETCH(QSize, size);
    QFETCH(int, lineWidth);
    QFETCH(double, factor);
    QFETCH(int, painted);
    QFETCH(QString, theme);

    VLiteStyle::setScaleOverride(factor);
    QWidget back;
    back.setAutoFillBackground(true);
    QPalette pal = back.palette();
    pal.setColor(QPalette::Window, Qt::black);
    back.setPalette(pal);
    back.resize(size);
    VSeparatorLine line(&back, Qt::Orientation(orientation));
    line.setLineWidth(lineWidth);
    line.setGeometry(QRect(QPoint(0, 0), size));
    // A switch after the line was made counts too.
    QVERIFY(VLiteStyle::setTheme(theme));
    const QImage image = back.grab().toImage();
    VLiteStyle::setScaleOverride(0);

    const QColor colour = VDrawHelper::getColorFromTheme("VSeparatorLine", VDrawHelper::Prop_Content, QColor());
    VLiteStyle::setTheme(QStringLiteral("light"));
    int count = 0;
    int first = -1;
    const bool vertical = orientation == Qt::Vertical;
    const int across = vertical ? size.width() : size.height();
    for (int i = 0; i < across; ++i) {
        const QPoint p = vertical ? QPoint(i, size.height() / 2) : QPoint(size.width() / 2, i);
        if (image.pixelColor(p).rgb() == colour.rgb()) {
            if (first < 0)
                first = i;
            ++count;
        }
    }
    QCOMPARE(count, painted);
    QCOMPARE(first, (across - painted) / 2);
}

QTEST_MAIN(tst_VSeparatorLine)
#include "tst_vseparatorline.moc"
