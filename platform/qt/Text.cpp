#include "Text.h"

QString ToQt(const CXTString<wchar_t>& text) { return QString::fromStdWString(text.Str()); }
CXTString<wchar_t> FromQt(const QString& text) { return text.toStdWString(); }

QString TableText(unsigned int id)
{
    CXTString<wchar_t> text;
    text.LoadStringW(id);
    return ToQt(text);
}

namespace {

struct Mark {
    const char* name;
    const char *open, *close;
};
constexpr Mark MARKS[] = {
    {"k", "<b>", "</b>"},
    {"b", "<b>", "</b>"},
    {"i", "<i>", "</i>"},
    {"e", "<i>", "</i>"},
};

}

QString ToRichText(const CXTString<wchar_t>& text)
{
    QString rich = ToQt(text).toHtmlEscaped();
    for (const Mark& mark : MARKS) {
        rich.replace(QStringLiteral("&lt;%1&gt;").arg(QLatin1String(mark.name)), QLatin1String(mark.open));
        rich.replace(QStringLiteral("&lt;/%1&gt;").arg(QLatin1String(mark.name)), QLatin1String(mark.close));
    }
    rich.replace(QLatin1String("&lt;br&gt;"), QLatin1String("<br>"));
    return rich.replace(QLatin1Char('\n'), QLatin1String("<br>"));
}

QString ToPlainText(const CXTString<wchar_t>& text)
{
    QString plain = ToQt(text);
    for (const Mark& mark : MARKS) {
        plain.remove(QStringLiteral("<%1>").arg(QLatin1String(mark.name)));
        plain.remove(QStringLiteral("</%1>").arg(QLatin1String(mark.name)));
    }
    return plain.replace(QLatin1String("<br>"), QLatin1String("\n"));
}

QString WithoutAccessKey(const QString& text)
{
    QString plain;
    for (int i = 0; i < text.size(); i++) {
        if (text[i] == QLatin1Char('&') && i + 1 < text.size())
            i++;
        plain += text[i];
    }
    return plain;
}
