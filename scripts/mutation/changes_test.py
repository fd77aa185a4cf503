"""What counts as a change; scripts/mutate runs this before it relies on it."""

import unittest

from mutation.changes import changes_of, choose


def made(source, kind=None):
    """The changed sources, without the rest of the file."""
    return [change.shown_in(source)[1] for change in changes_of("src/some.cpp", source, 1)
            if kind in (None, change.kind)]


def in_function(code):
    return "void f()\n{\n" + code + "\n}\n"


class Changes(unittest.TestCase):
    def test_comparisons(self):
        self.assertEqual(made(in_function("x = a == b;")), ["x = a != b;"])
        self.assertEqual(made(in_function("x = a < b;")), ["x = a <= b;"])
        self.assertEqual(made(in_function("x = a >= b;")), ["x = a > b;"])

    def test_brackets_references_and_pointers_are_no_operators(self):
        self.assertEqual(made("template <typename T> std::vector<T *> g(const T &one, T &&two);\n"), [])

    def test_operators(self):
        self.assertEqual(made(in_function("x = a && b;")), ["x = a || b;"])
        self.assertEqual(made(in_function("x = !a;")), ["x = a;"])
        self.assertEqual(made(in_function("x = a & b;")), ["x = a | b;"])
        self.assertEqual(made(in_function("++x;")), ["--x;"])
        self.assertEqual(made(in_function("for (auto x = a; x; ++x)\ny = x++;")), ["y = x--;"])
        self.assertEqual(made(in_function('x = name + "a";'), "operator"), [])

    def test_constants(self):
        self.assertEqual(made("int x = 0;\n"), ["int x = 1;"])
        self.assertIn(made("int x = 0x0F;\n"), (["int x = 0x10;"], ["int x = 0x0E;"]))
        self.assertIn(made("auto x = 30ms;\n"), (["auto x = 29ms;"], ["auto x = 31ms;"]))
        self.assertEqual(made("bool x = true;\n"), ["bool x = false;"])
        self.assertEqual(made("struct S { virtual int a() = 0; virtual int b() const = 0; };\n"), [])

    def test_texts(self):
        self.assertEqual(made('auto x = "a";\n'), ['auto x = "b";'])
        self.assertEqual(made('auto x = "\\n: ";\n'), ['auto x = "\\n: x";'])
        self.assertEqual(made('auto x = "";\n'), [])
        self.assertEqual(made('#include "a.h"\nextern "C" int x;\n'), [])

    def test_calls(self):
        self.assertEqual(made(in_function("start();")), [";"])
        self.assertEqual(made(in_function("a->b(c).d<int>();")), [])
        self.assertEqual(made(in_function("a::b->c(d)[e].g();")), [";"])
        self.assertEqual(made(in_function("if (a)\nstart();")), [";"])
        self.assertEqual(made(in_function('qDebug() << f(a) << b;')), [";"])
        self.assertEqual(made(in_function("Q_EMIT done(a);")), [";"])

    def test_declarations_assignments_and_results_are_no_calls(self):
        for code in ("Guard guard(lock);", "x = start();", "return start();", "int g(int a);"):
            self.assertEqual(made(in_function(code)), [], code)
        self.assertEqual(made("class A\n{\npublic:\n    A();\n    void b() { c(); }\n};\n"), ["void b() { ; }"])
        self.assertEqual(made("namespace n {\nclass A;\nvoid b();\n}\n"), [])

    def test_what_only_the_compiler_reads_is_left_alone(self):
        self.assertEqual(made('// a == 1\n/* "b" */\nstatic_assert(sizeof(int) == 4, "no");\n[[deprecated("x")]] int a();\n'),
                         [])

    def test_the_choice_depends_on_the_seed_alone(self):
        sources = {f"src/{name}.cpp": in_function("x = a == 1 && b < 2;\nstart();") for name in "abcdef"}
        backwards = dict(reversed(sources.items()))
        self.assertEqual(choose(sources, 12, 5), choose(backwards, 12, 5))
        self.assertNotEqual(choose(sources, 12, 5), choose(sources, 12, 6))
        self.assertEqual(len(choose(sources, 12, 5)), 12)
        self.assertEqual(len(set(choose(sources, 1000, 5))), 6 * 6)  # and no change twice


if __name__ == "__main__":
    unittest.main()
