#include "Questions.h"

#include <vector>

#include <QWidget>

static std::vector<const COpenQuestion*> g_open;

COpenQuestion::COpenQuestion(const QWidget& window, CShownQuestion shown, Answer answer)
    : m_window(window), m_shown(std::move(shown)), m_answer(std::move(answer))
{
    g_open.push_back(this);
}

COpenQuestion::~COpenQuestion() { std::erase(g_open, this); }

std::vector<CShownQuestion> COpenQuestion::GetAll()
{
    std::vector<CShownQuestion> all;
    for (const COpenQuestion* const question : g_open)
        if (question->m_window.isVisible())
            all.push_back(question->m_shown);
    return all;
}

bool COpenQuestion::AnswerLast(const QString& answer)
{
    return !g_open.empty() && g_open.back()->m_window.isVisible() && g_open.back()->m_answer(answer);
}
