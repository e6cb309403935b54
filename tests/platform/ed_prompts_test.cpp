// Prompts answered from an input source, and the command stack that runs commands by name.
#include "aced.h"
#include "cmdline.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

// Answers the prompts from the given lines and collects the transcript.
class Answers {
public:
    explicit Answers(const std::string& lines) : mIn(lines) { qorSetPromptInput(&mIn); }
    ~Answers() { qorSetPromptInput(nullptr); }
    Answers(const Answers&) = delete;
    Answers& operator=(const Answers&) = delete;

    std::wstring transcript() const { return mCapture.text(); }
    int refusals() const {
        int n = 0;
        for (size_t at = 0; (at = mCapture.text().find(L"Invalid input", at)) != std::wstring::npos;
             ++at)
            ++n;
        return n;
    }

private:
    std::istringstream mIn;
    AcutCapture mCapture;
};

TEST(EdPrompts, ValuesAreReadOneLineEachAndEchoed) {
    Answers answers("2.5\n-3\n1,2\n4,5,6\n+.5e1\n");
    double real = 0.0;
    int whole = 0;
    ads_point p2 = {9, 9, 9}, p3;
    EXPECT_EQ(acedGetReal(L"\nWidth: ", &real), RTNORM);
    EXPECT_DOUBLE_EQ(real, 2.5);
    EXPECT_EQ(acedGetInt(L"\nCount: ", &whole), RTNORM);
    EXPECT_EQ(whole, -3);
    EXPECT_EQ(acedGetPoint(nullptr, L"\nFrom: ", p2), RTNORM);
    EXPECT_EQ((std::vector<double>{p2[0], p2[1], p2[2]}), (std::vector<double>{1, 2, 0}));
    EXPECT_EQ(acedGetPoint(nullptr, L"\nTo: ", p3), RTNORM);
    EXPECT_EQ((std::vector<double>{p3[0], p3[1], p3[2]}), (std::vector<double>{4, 5, 6}));
    EXPECT_EQ(acedGetDist(nullptr, L"\nGap: ", &real), RTNORM);
    EXPECT_DOUBLE_EQ(real, 5.0);
    EXPECT_EQ(answers.transcript(), L"\nWidth: 2.5\nCount: -3\nFrom: 1,2\nTo: 4,5,6\nGap: +.5e1");
    EXPECT_EQ(qorInputLineNumber(), 5);
}

TEST(EdPrompts, EnterCancelAndTheEndOfInput) {
    Answers answers("\n  *CANCEL* \n\n\n");
    double real = 7.0;
    ads_point p = {1, 1, 1};
    ACHAR text[8] = L"x";
    EXPECT_EQ(acedGetReal(L"R: ", &real), RTNONE);
    EXPECT_DOUBLE_EQ(real, 7.0) << "Enter leaves the result alone";
    EXPECT_EQ(acedGetPoint(nullptr, L"P: ", p), RTCAN);
    // Enter at a string prompt is the empty string.
    EXPECT_EQ(acedGetString(0, L"S: ", text), RTNORM);
    EXPECT_STREQ(text, L"");
    int whole = 0;
    EXPECT_EQ(acedGetInt(L"I: ", &whole), RTNONE);
    EXPECT_EQ(acedGetReal(L"R: ", &real), RTCAN) << "no line left";
    EXPECT_EQ(acedGetString(1, L"S: ", text), RTCAN);
    EXPECT_NE(answers.transcript().find(L"P: *Cancel*"), std::wstring::npos);
    // Without an input source every prompt is cancelled.
    qorSetPromptInput(nullptr);
    EXPECT_EQ(acedGetInt(L"I: ", &whole), RTCAN);
}

TEST(EdPrompts, MalformedAnswersAreRefusedAndAskedAgain) {
    Answers answers("abc\n1e999\nnan\n 7 \n1.5\n40000\n3x\n12\n1\n1,2,3,4\n1,,2\n一,二\n@1,-1\n");
    double real = 0.0;
    EXPECT_EQ(acedGetReal(L"R: ", &real), RTNORM);
    EXPECT_DOUBLE_EQ(real, 7.0);
    EXPECT_EQ(answers.refusals(), 3);
    int whole = 0;
    EXPECT_EQ(acedGetInt(L"I: ", &whole), RTNORM);
    EXPECT_EQ(whole, 12);
    EXPECT_EQ(answers.refusals(), 6);
    EXPECT_NE(answers.transcript().find(L"from -32768 to 32767"), std::wstring::npos);
    const ads_point base = {10, 20, 30};
    ads_point p;
    EXPECT_EQ(acedGetPoint(base, L"P: ", p), RTNORM);
    EXPECT_EQ((std::vector<double>{p[0], p[1], p[2]}), (std::vector<double>{11, 19, 30}));
    EXPECT_EQ(answers.refusals(), 10);
    EXPECT_EQ(qorInputLineNumber(), 13);
    EXPECT_NE(answers.transcript().find(L"\nInvalid input: a point (x,y or x,y,z) is required.P: "),
              std::wstring::npos)
        << "the prompt is shown again after the refusal";
}

TEST(EdPrompts, RelativePointsFollowTheLastPointWithoutABase) {
    Answers answers("3,4\n@1,1\n@\n");
    ads_point p;
    ASSERT_EQ(acedGetPoint(nullptr, L"", p), RTNORM);
    ASSERT_EQ(acedGetPoint(nullptr, L"", p), RTNORM);
    EXPECT_EQ((std::vector<double>{p[0], p[1]}), (std::vector<double>{4, 5}));
    ASSERT_EQ(acedGetPoint(nullptr, L"", p), RTNORM);
    EXPECT_EQ((std::vector<double>{p[0], p[1]}), (std::vector<double>{4, 5}));
}

TEST(EdPrompts, InitGetFlagsHoldThroughRefusalsForTheNextPromptOnly) {
    Answers answers("\n0\n-2\n4\n\n0\n");
    double real = 0.0;
    acedInitGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG, nullptr);
    EXPECT_EQ(acedGetReal(L"R: ", &real), RTNORM);
    EXPECT_DOUBLE_EQ(real, 4.0);
    EXPECT_EQ(answers.refusals(), 3);
    EXPECT_NE(answers.transcript().find(L"an answer is required"), std::wstring::npos);
    EXPECT_NE(answers.transcript().find(L"must not be zero"), std::wstring::npos);
    EXPECT_NE(answers.transcript().find(L"must not be negative"), std::wstring::npos);
    EXPECT_EQ(acedGetReal(L"R: ", &real), RTNONE);
    int whole = 5;
    EXPECT_EQ(acedGetInt(L"I: ", &whole), RTNORM);
    EXPECT_EQ(whole, 0);
    EXPECT_EQ(answers.refusals(), 3);
}

TEST(EdPrompts, KeywordsMatchByCapitalsAndComeBackAsGlobalNames) {
    Answers answers("a\nlty\nX\n_exit\nl\nltypes\nexi\nLType\n\n");
    const ACHAR* kwl = L"Arc LType eXit _ ARC LINETYPE EXIT";
    ads_point p;
    ACHAR kw[16];
    acedInitGet(0, kwl);
    EXPECT_EQ(acedGetPoint(nullptr, L"P: ", p), RTKWORD);
    EXPECT_EQ(acedGetInput(kw), RTNORM);
    EXPECT_STREQ(kw, L"ARC");
    double real = 0.0;
    acedInitGet(0, kwl);
    EXPECT_EQ(acedGetReal(L"R: ", &real), RTKWORD);
    acedGetInput(kw);
    EXPECT_STREQ(kw, L"LINETYPE");
    acedInitGet(0, kwl);
    EXPECT_EQ(acedGetKword(L"K: ", kw), RTNORM);
    EXPECT_STREQ(kw, L"EXIT");
    acedInitGet(0, kwl);
    EXPECT_EQ(acedGetKword(L"K: ", kw), RTNORM) << "a global name with its underscore";
    EXPECT_STREQ(kw, L"EXIT");
    // "l" is shorter than LType's capitals, "ltypes" longer than the keyword, "exi" neither the
    // whole of eXit nor its capital: all three are asked again.
    acedInitGet(0, kwl);
    EXPECT_EQ(acedGetKword(L"K: ", kw), RTNORM);
    EXPECT_STREQ(kw, L"LINETYPE");
    EXPECT_EQ(answers.refusals(), 3);
    EXPECT_NE(answers.transcript().find(L"one of the options is required"), std::wstring::npos);
    acedInitGet(0, kwl);
    EXPECT_EQ(acedGetKword(L"K: ", kw), RTNONE);
    EXPECT_EQ(acedGetInput(kw), RTERROR) << "the last prompt gave no keyword";
}

TEST(EdPrompts, OtherInputAndKeywordsWithoutGlobalNames) {
    Answers answers("north\n道路\nsouth\n");
    ads_point p;
    ACHAR kw[16];
    // A global list of another length is ignored: the local names are the global ones.
    acedInitGet(RSG_OTHER, L"North South _ N");
    EXPECT_EQ(acedGetPoint(nullptr, L"P: ", p), RTKWORD);
    acedGetInput(kw);
    EXPECT_STREQ(kw, L"North");
    acedInitGet(RSG_OTHER, L"North South");
    EXPECT_EQ(acedGetPoint(nullptr, L"P: ", p), RTKWORD);
    acedGetInput(kw);
    EXPECT_STREQ(kw, L"道路");
    // Without a keyword list or RSG_OTHER there is nothing to choose from: no line is read.
    EXPECT_EQ(acedGetKword(L"K: ", kw), RTERROR);
    EXPECT_EQ(qorInputLineNumber(), 2);
    acedInitGet(RSG_OTHER, nullptr);
    EXPECT_EQ(acedGetKword(L"K: ", kw), RTNORM);
    EXPECT_STREQ(kw, L"south");
}

TEST(EdPrompts, StringsKeepOrTrimBlanksAndAreCutToTheBuffer) {
    Answers answers("\xEF\xBB\xBF  规划 道路 \r\n  规划 道路 \nabcdefgh\n" + std::string(200, 'z') +
                    "\n");
    ACHAR buf[64];
    EXPECT_EQ(acedGetString(1, L"S: ", buf, 64), RTNORM);
    EXPECT_STREQ(buf, L"  规划 道路 ") << "byte-order mark and carriage return dropped";
    EXPECT_EQ(acedGetString(0, L"S: ", buf, 64), RTNORM);
    EXPECT_STREQ(buf, L"规划 道路");
    EXPECT_EQ(acedGetString(0, L"S: ", buf, 4), RTINPUTTRUNCATED);
    EXPECT_STREQ(buf, L"abc");
    ACHAR big[kQorPromptAnswerMax + 10];
    EXPECT_EQ(acedGetString(0, L"S: ", big), RTINPUTTRUNCATED);
    EXPECT_EQ(std::wstring(big), std::wstring(kQorPromptAnswerMax, L'z'));
}

TEST(EdPrompts, MissingResultsAreErrorsThatReadNothing) {
    Answers answers("1\n");
    EXPECT_EQ(acedGetReal(L"R: ", nullptr), RTERROR);
    EXPECT_EQ(acedGetInt(L"I: ", nullptr), RTERROR);
    EXPECT_EQ(acedGetDist(nullptr, L"D: ", nullptr), RTERROR);
    EXPECT_EQ(acedGetPoint(nullptr, L"P: ", nullptr), RTERROR);
    EXPECT_EQ(acedGetString(0, L"S: ", nullptr), RTERROR);
    ACHAR one[1];
    EXPECT_EQ(acedGetString(0, L"S: ", one, 0), RTERROR);
    acedInitGet(0, L"Yes No");
    EXPECT_EQ(acedGetKword(L"K: ", nullptr), RTERROR);
    EXPECT_EQ(acedGetInput(nullptr), RTERROR);
    EXPECT_EQ(qorInputLineNumber(), 0);
    // The keyword list above went with the refused call.
    double real = 0.0;
    EXPECT_EQ(acedGetReal(L"R: ", &real), RTNORM);
    EXPECT_DOUBLE_EQ(real, 1.0);
}

TEST(EdPrompts, ADistanceMayBeGivenAsAPointFromTheBase) {
    Answers answers("3,4\n-1\n2\n");
    const ads_point base = {0, 0, 0};
    double d = 0.0;
    EXPECT_EQ(acedGetDist(base, L"D: ", &d), RTNORM);
    EXPECT_DOUBLE_EQ(d, 5.0);
    acedInitGet(RSG_NONEG, nullptr);
    EXPECT_EQ(acedGetDist(base, L"D: ", &d), RTNORM);
    EXPECT_DOUBLE_EQ(d, 2.0);
}

TEST(EdPrompts, EchoCanBeTurnedOffButPromptsAndCancelsShow) {
    Answers answers("5\n");
    qorSetPromptEcho(false);
    int whole = 0;
    EXPECT_EQ(acedGetInt(L"I: ", &whole), RTNORM);
    EXPECT_EQ(acedGetInt(L"I: ", &whole), RTCAN);
    qorSetPromptEcho(true);
    EXPECT_EQ(whole, 5);
    EXPECT_EQ(answers.transcript(), L"I: I: *Cancel*");
}

// ---------------------------------------------------------------- the command stack

// Removes the test's groups whatever happens to the test.
struct GroupGuard {
    std::vector<const ACHAR*> groups;
    ~GroupGuard() {
        for (const ACHAR* g : groups)
            acedRegCmds->removeGroup(g);
    }
};

std::vector<std::wstring> gCalls;
void cmdA() {
    gCalls.push_back(L"A");
}
void cmdB() {
    gCalls.push_back(L"B");
}

TEST(EdCommands, AddLookUpAndRemove) {
    GroupGuard guard{{L"T1", L"T2"}};
    AcEdCommandStack* stack = acedRegCmds;
    ASSERT_EQ(stack, acedRegCmds) << "one stack for the host";
    AcEdCommand* made = nullptr;
    EXPECT_EQ(stack->addCommand(L"T1", L"SITE", L"场地", ACRX_CMD_MODAL | ACRX_CMD_USEPICKSET, cmdA,
                                nullptr, 7, nullptr, &made),
              Acad::eOk);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->functionCode(), 7);
    EXPECT_EQ(made->commandFlags(), ACRX_CMD_USEPICKSET);
    EXPECT_EQ(stack->lookupGlobalCmd(L"site"), made);
    EXPECT_EQ(stack->lookupLocalCmd(L"场地"), made);
    EXPECT_EQ(stack->lookupLocalCmd(L"SITE"), nullptr);
    EXPECT_EQ(stack->lookupCmd(L"Site", true), made);

    // Duplicate names within a group are refused; bad names and missing parts are input errors.
    EXPECT_EQ(stack->addCommand(L"t1", L"Site", L"other", 0, cmdB), Acad::eDuplicateKey);
    EXPECT_EQ(stack->addCommand(L"T1", L"OTHER", L"场地", 0, cmdB), Acad::eDuplicateKey);
    for (const ACHAR* bad : {L"", L"TWO WORDS", L"_LEAD", L".DOT", L"'QUOTE"})
        EXPECT_EQ(stack->addCommand(L"T1", bad, nullptr, 0, cmdB), Acad::eInvalidInput) << bad;
    EXPECT_EQ(stack->addCommand(L"T1", nullptr, nullptr, 0, cmdB), Acad::eInvalidInput);
    EXPECT_EQ(stack->addCommand(nullptr, L"X", nullptr, 0, cmdB), Acad::eInvalidInput);
    EXPECT_EQ(stack->addCommand(L"T1", L"X", nullptr, 0, nullptr), Acad::eInvalidInput);

    // A newer group overrides the name until the older one is popped to the top.
    ASSERT_EQ(stack->addCommand(L"T2", L"SITE", nullptr, 0, cmdB), Acad::eOk);
    EXPECT_EQ(stack->lookupGlobalCmd(L"SITE")->functionAddr(), cmdB);
    EXPECT_EQ(stack->lookupLocalCmd(L"SITE")->functionAddr(), cmdB) << "local name defaults";
    EXPECT_EQ(stack->popGroupToTop(L"t1"), Acad::eOk);
    EXPECT_EQ(stack->lookupGlobalCmd(L"SITE"), made);
    EXPECT_EQ(stack->popGroupToTop(L"NONE"), Acad::eKeyNotFound);

    std::vector<std::wstring> seen;
    std::unique_ptr<AcEdCommandIterator> it(stack->iterator());
    for (; !it->done(); it->next())
        if (std::wstring(it->commandGroup()).starts_with(L"T"))
            seen.push_back(std::wstring(it->commandGroup()) + L":" + it->command()->globalName());
    EXPECT_EQ(seen, (std::vector<std::wstring>{L"T1:SITE", L"T2:SITE"}));
    EXPECT_FALSE(it->next());
    EXPECT_EQ(it->command(), nullptr);

    EXPECT_EQ(stack->removeCmd(L"T1", L"NOPE"), Acad::eKeyNotFound);
    EXPECT_EQ(stack->removeCmd(L"T1", L"site"), Acad::eOk);
    EXPECT_EQ(stack->lookupGlobalCmd(L"SITE")->functionAddr(), cmdB);
    EXPECT_EQ(stack->removeGroup(L"T1"), Acad::eKeyNotFound) << "an emptied group goes";
    EXPECT_EQ(stack->removeGroup(L"T2"), Acad::eOk);
    EXPECT_EQ(stack->lookupGlobalCmd(L"SITE"), nullptr);
}

TEST(EdCommands, RunByNameWithThePrefixes) {
    GroupGuard guard{{L"T3"}};
    gCalls.clear();
    ASSERT_EQ(acedRegCmds->addCommand(L"T3", L"RUNA", L"RUNB", 0, cmdA), Acad::eOk);
    ASSERT_EQ(acedRegCmds->addCommand(L"T3", L"RUNB", L"本地", 0, cmdB), Acad::eOk);
    EXPECT_TRUE(qorRunCommand(L"runb")) << "the local name comes first";
    EXPECT_TRUE(qorRunCommand(L"_RUNB"));
    EXPECT_TRUE(qorRunCommand(L"._runa"));
    EXPECT_TRUE(qorRunCommand(L"本地"));
    EXPECT_FALSE(qorRunCommand(L"_本地")) << "not a global name";
    EXPECT_FALSE(qorRunCommand(L"NOSUCH"));
    EXPECT_FALSE(qorRunCommand(L""));
    EXPECT_FALSE(qorRunCommand(nullptr));
    EXPECT_EQ(gCalls, (std::vector<std::wstring>{L"A", L"B", L"A", L"B"}));
}

std::vector<int> gResults;
// Asks three times whatever it is told, as a careless command would.
void stubborn() {
    double v = 0.0;
    for (int i = 0; i < 3; ++i)
        gResults.push_back(acedGetReal(L"R: ", &v));
}

TEST(EdCommands, ACancelEndsTheWholeCommandButNotTheNext) {
    GroupGuard guard{{L"T4"}};
    ASSERT_EQ(acedRegCmds->addCommand(L"T4", L"STUBBORN", nullptr, 0, stubborn), Acad::eOk);
    Answers answers("1\n*cancel*\n2\n3\n");
    gResults.clear();
    ASSERT_TRUE(qorRunCommand(L"STUBBORN"));
    EXPECT_EQ(gResults, (std::vector<int>{RTNORM, RTCAN, RTCAN}));
    EXPECT_EQ(qorInputLineNumber(), 2) << "the cancelled prompts read nothing";
    gResults.clear();
    ASSERT_TRUE(qorRunCommand(L"STUBBORN"));
    EXPECT_EQ(gResults, (std::vector<int>{RTNORM, RTNORM, RTCAN}));
    // Outside a command a cancel is not remembered.
    Answers more("*cancel*\n4\n");
    double v = 0.0;
    EXPECT_EQ(acedGetReal(L"R: ", &v), RTCAN);
    EXPECT_EQ(acedGetReal(L"R: ", &v), RTNORM);
}

TEST(EdCommands, TheHostReadsItsLinesFromTheSameSource) {
    Answers answers("DUB\r\n5\n");
    std::wstring line;
    ASSERT_TRUE(qorReadInputLine(line));
    EXPECT_EQ(line, L"DUB");
    EXPECT_EQ(qorInputLineNumber(), 1);
    double v = 0.0;
    EXPECT_EQ(acedGetReal(L"R: ", &v), RTNORM);
    EXPECT_FALSE(qorReadInputLine(line));
    EXPECT_EQ(qorInputLineNumber(), 2);
}

} // namespace
