#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tesselc/parser.h"
#include "tests/runner/tree_printer.h"

namespace tesselc {
namespace {

// The tree of a faultless script, or the first message about a faulty one.
std::string Parsed(const std::string& script) {
  SourceSet sources;
  const ParseResult result = ParseProgram(sources, sources.Add("test", script));
  return result.ok() ? ToText(result.program) : result.diagnostics[0].message;
}

struct Case {
  const char* script;
  const char* tree;
};

void ExpectTrees(const std::vector<Case>& cases) {
  for (const Case& c : cases) EXPECT_EQ(Parsed(c.script), c.tree) << c.script;
}

TEST(Grammar, OrdersOperatorsByPrecedence) {
  ExpectTrees({
      {"a=1+2*3;", "(= a (+ 1 (* 2 3)))"},
      {"a-b+c-d;", "(- (+ (- a b) c) d)"},
      {"a-(b-c);", "(- a (- b c))"},
      {"(a-b)-c;", "(- (- a b) c)"},
      {"a||b&&c|d&e==f<g<<h+i*j;", "(|| a (&& b (| c (& d (== e (< f (<< g (+ h (* i j)))))))))"},
      {"j*i+h<<g<f==e&d|c&&b||a;", "(|| (&& (| (& (== (< (<< (+ (* j i) h) g) f) e) d) c) b) a)"},
      {"a<b>=c;", "(>= (< a b) c)"},
      {"a>>b<<c;", "(<< (>> a b) c)"},
      {"a%b/c;", "(/ (% a b) c)"},
      {"a!=b==c;", "(== (!= a b) c)"},
      {"a=b=c;", "(= a (= b c))"},
      {"a+=b-=c;", "(+= a (-= b c))"},
      {"a<<=b>>=c;", "(<<= a (>>= b c))"},
      {"a^=b; a&=b; a|=b; a%=b;", "(^= a b) (&= a b) (|= a b) (%= a b)"},
      {"a?b:c?d:e;", "(? a b (? c d e))"},
      {"a?b?c:d:e;", "(? a (? b c d) e)"},
      {"a?b,c:d;", "(? a (, b c) d)"},
      {"a?b:c=d;", "(? a b (= c d))"},
      {"a=b?c:d;", "(= a (? b c d))"},
      {"a||b?c:d;", "(? (|| a b) c d)"},
      {"a=1,b=2,c;", "(, (, (= a 1) (= b 2)) c)"},
  });
}

TEST(Grammar, PowerBindsTighterThanSignsAndProducts) {
  ExpectTrees({
      {"2^3^2;", "(^ 2 (^ 3 2))"},
      {"(2^3)^2;", "(^ (^ 2 3) 2)"},
      {"a*b^c*d;", "(* (* a (^ b c)) d)"},
      {"-2^2;", "(- (^ 2 2))"},
      {"2^-1;", "(^ 2 (- 1))"},
      {"2^-3^2*4;", "(* (^ 2 (- (^ 3 2))) 4)"},
      {"-a*b;", "(* (- a) b)"},
      {"!a^b;", "(^ (! a) b)"},
      {"(int)x^2;", "(^ (cast int x) 2)"},
      {"++i^2;", "(^ (++_ i) 2)"},
      {"-v[1].m_re^2;", "(- (^ (. ([] v 1) m_re) 2))"},
      {"- -a;", "(- (- a))"},
      {"(double)-2^2;", "(cast double (- (^ 2 2)))"},
  });
}

TEST(Grammar, ReadsOperandsAndPostfixes) {
  ExpectTrees({
      {"a---b;", "(- (_-- a) b)"},
      {"*p++; &a; ~a; !a;", "(deref (_++ p)) (addr a) (~ a) (! a)"},
      {"v[i][j+1];", "([] ([] v i) (+ j 1))"},
      {"v.Sum(t).x->y();", "(-> (. (. v Sum() t) x) y())"},
      {"v.case; v.double();", "(. v case) (. v double())"},
      {"f(); f(1,(2,3),a=4);", "(call f) (call f 1 (, 2 3) (= a 4))"},
      {"double(x)+1; (double(x)); (double)x;",
       "(+ (new double x) 1) (new double x) (cast double x)"},
      {"(vector<int>)v; (string*)p;", "(cast vector<int> v) (cast string* p)"},
      {"complex(1,2).m_re; unsigned char(3);", "(. (new complex 1 2) m_re) (new uchar 3)"},
      {"file::modeRead|file::modeCreate;", "(| file::modeRead file::modeCreate)"},
      {"a ? file::modeRead : b;", "(? a file::modeRead b)"},
      {"a/*x*/+//y\nb;", "(+ a b)"},
  });
}

TEST(Grammar, ReadsLiterals) {
  ExpectTrees({
      {"0; 10; 0x1F; 0X1f; 010; 0b101;", "0 10 31 31 8 5"},
      {"2147483647; 2147483648; 9223372036854775807;",
       "2147483647 2147483648:int64 9223372036854775807:int64"},
      {"0x7FFFFFFF; 0x80000000; 0x100000000;", "2147483647 2147483648:uint 4294967296:int64"},
      {"18446744073709551615; 1u; 1LL; 1ull;",
       "18446744073709551615:uint64 1:uint 1:int64 1:uint64"},
      {"1.5e-3; .5; 5.; 1e3; 1E+2; 0.25f;", "0.0015 0.5 5 1000 100 0.25f"},
      {"1e-400; 0e999; 2i; 1.5i; 1e2i;", "0 0 2i 1.5i 100i"},
      {"TRUE; false; NULL; NANUM; INFINITY; PI;", "1 0 NULL NANUM inf 3.1415926535897931"},
      {"'a'; '\\n'; '\\0'; '\\x41'; '\\''; '\"'; '\\377';", "'97 '10 '0 '65 '39 '34 '255"},
      {R"("a\tb\\\"\101\x42'";)", "\"a\tb\\\"AB'\""},
      {"\"a\" \"b\" /* and */\n\"c\";", "\"abc\""},
      {"\"a\\\nb\";", "\"ab\""},
      {R"("\u00e9\U0001F600";)", "\"\xC3\xA9\xF0\x9F\x98\x80\""},
      {"\"\xC3\xA9 \xFF\";", "\"\xC3\xA9 \xFF\""},
  });
  const std::string nul = Parsed(std::string("\"a\0b\";", 6));
  EXPECT_EQ(nul, std::string("\"a\0b\"", 5));
}

TEST(Grammar, ReadsDeclarations) {
  ExpectTrees({
      {"int a; int b=1,*c,d[3];", "(let (int a)) (let (int b = 1) (int* c) (int d[3]))"},
      {"byte a; uchar b; unsigned char c;", "(let (uchar a)) (let (uchar b)) (let (uchar c))"},
      {"word a; unsigned short b; unsigned c; DWORD d;",
       "(let (ushort a)) (let (ushort b)) (let (uint c)) (let (uint d))"},
      {"bool a; BOOL b; __int64 c; unsigned __int64 d;",
       "(let (int a)) (let (int b)) (let (int64 c)) (let (uint64 d))"},
      {"vector v; vector<int> w; matrix<complex> m(2,3);",
       "(let (vector<double> v)) (let (vector<int> w)) (let (matrix<complex> m with 2 3))"},
      {"Dataset<float> a; Curve b; MatrixObject<int> c; Categorical d;",
       "(let (Dataset<float> a)) (let (Curve<double> b)) (let (MatrixObject<int> c)) "
       "(let (Categorical d))"},
      {"vector<unsigned int> v={1,2,NANUM,};", "(let (vector<uint> v = { 1 2 NANUM }))"},
      {"matrix m={{1,2},{3,4}};", "(let (matrix<double> m = { { 1 2 } { 3 4 } }))"},
      {"StringArray sa = {\"a\"}; vector v = {}; vector w{1};",
       "(let (StringArray sa = { \"a\" })) (let (vector<double> v = { })) "
       "(let (vector<double> w = { 1 }))"},
      {"matrix<double> m[3]; int a[]={1};", "(let (matrix<double> m[3])) (let (int a[] = { 1 }))"},
      {"const double k=2; double const j=3;",
       "(let (const double k = 2)) (let (const double j = 3))"},
      {"string& r = s; vector<int>* p = NULL;",
       "(let (string& r = s)) (let (vector<int>* p = NULL))"},
      {"vector v(double(3)); int doubled; doubled=1;",
       "(let (vector<double> v with (new double 3))) (let (int doubled)) (= doubled 1)"},
      {"fpoint3d p; point q(1,2); _VARIANT x; Picture y; stdioFile f; file g;",
       "(let (fpoint3d p)) (let (point q with 1 2)) (let (_VARIANT x)) (let (Picture y)) "
       "(let (stdioFile f)) (let (file g))"},
  });
}

TEST(Grammar, ReadsStatements) {
  ExpectTrees({
      {"if(a) b; else if(c) d; else e;", "(if a b c d else e)"},
      {"if(a) if(b) c; else d;", "(if a (if b c else d))"},
      {"if(a) {} else { if(b) c; }", "(if a (block) else (block (if b c)))"},
      {"while(a) {b; c;} do a; while(b);", "(while a (block b c)) (do a b)"},
      {"for(;;) break;", "(for - - - (break))"},
      {"for(int i=0,j=9;i<j;++i,--j) continue;",
       "(for (let (int i = 0) (int j = 9)) (< i j) (, (++_ i) (--_ j)) (continue))"},
      {"for(i=0;;) ;", "(for (= i 0) - - (empty))"},
      {"for(double x:v) f(x); for(const string& s : sa) ;",
       "(each double x v (call f x)) (each const string& s sa (empty))"},
      {"switch(a) { case 1: case 2: b; break; default: c; case file::modeRead: }",
       "(switch a (1:2: b (break)) (default: c) (file::modeRead:))"},
      {"switch(a) {}", "(switch a)"},
      {"switch(a) { case 1: switch(b) { case 2: c; } d; }", "(switch a (1: (switch b (2: c)) d))"},
      {"try { a; } catch (int status) { b; }", "(try (block a) status (block b))"},
      {"return; return a,b;", "(return) (return (, a b))"},
      {";{;}", "(empty) (block (empty))"},
      {"iffy; format; do_it();", "iffy format (call do_it)"},
  });
}

TEST(Grammar, ReadsFunctions) {
  ExpectTrees({
      {"double scale(vector<double>& v, double by = -1) { return by; } scale(v);",
       "(fn double scale (vector<double>& v, double by = (- 1)) (block (return by))) "
       "(call scale v)"},
      {"int f(); void g(void) {}", "(fn int f () -) (fn void g () (block))"},
      {"string* f(int, const vectorbase& v, uint* i = NULL) {}",
       "(fn string* f (int , const vectorbase& v, uint* i = NULL) (block))"},
      {"\xEF\xBB\xBF#!/usr/bin/env tesselc\nint x;\r\n", "(let (int x))"},
      {"", ""},
  });
}

TEST(Grammar, GivesEveryNodeItsPlace) {
  SourceSet sources;
  const FileId file = sources.Add("test", "x = /**/ ( a + v.Sum( t ) [ 1 ] ) /**/ ;");
  const ParseResult result = ParseProgram(sources, file);
  ASSERT_TRUE(result.ok());
  const auto& statement = *result.program.statements[0];
  EXPECT_EQ(sources.Text(statement.range), sources.file(file).text());
  const auto& assign =
      std::get<Assign>(std::get<ExpressionStatement>(statement.node).expression->node);
  EXPECT_EQ(sources.Text(assign.op_range), "=");
  EXPECT_EQ(sources.Text(assign.value->range), "( a + v.Sum( t ) [ 1 ] )");
  const auto& sum = std::get<Binary>(assign.value->node);
  EXPECT_EQ(sources.Text(sum.rest[0].op_range), "+");
  EXPECT_EQ(sources.Text(sum.rest[0].operand->range), "v.Sum( t ) [ 1 ]");
  const auto& call = std::get<MemberCall>(std::get<Index>(sum.rest[0].operand->node).object->node);
  EXPECT_EQ(sources.Text(call.member.range), "Sum");
  EXPECT_EQ(sources.Text(call.arguments[0]->range), "t");
}

TEST(Prompt, TellsIncompleteFromWrong) {
  const auto expect = [](const std::vector<const char*>& texts, bool ok, bool incomplete) {
    for (const char* text : texts) {
      SourceSet sources;
      const ParseResult result = ParsePrompt(sources, sources.Add("prompt", text));
      EXPECT_EQ(result.ok(), ok) << text;
      EXPECT_EQ(result.incomplete, incomplete) << text;
    }
  };
  expect({"", "1+2", "int x = 1; x // echo"}, true, false);
  expect({"if (a) {", "if (a)", "f(1,", "1 +", "vector v = {1, 2", "double f(int a", "/* what"},
         false, true);
  expect({"\"what", "1 + )", "foo bar", "}"}, false, false);
  SourceSet sources;
  EXPECT_EQ(ToText(ParsePrompt(sources, sources.Add("prompt", "a; b")).program), "a b?");
}

}  // namespace
}  // namespace tesselc
