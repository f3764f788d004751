#include "Questions.h"

#include <vector>

static std::vector<const COpenQuestion*> g_open;

COpenQuestion::COpenQuestion(CShownQuestion shown, Answer answer) : m_shown(std::move(shown)), m_answer(std::move(answer))
{
    g_open.push_back(this);
}

COpenQuestion::~COpenQuestion() { std::erase(g_open, this); }

std::vector<CShownQuestion> COpenQuestion::GetAll()
{
    std::vector<CShownQuestion> all;
    for (const COpenQuestion* const question : g_open)
        all.push_back(question->m_shown);
    return all;
}

bool COpenQuestion::AnswerLast(const QString& answer) { return !g_open.empty() && g_open.back()->m_answer(answer); }
