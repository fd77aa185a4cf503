"""What scripts/check_includes lets pass, and what it prints about the rest."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[3] / "scripts/check_includes"
HEADERS = ["src/service/end.h", "src/pipe/server.h", "src/pipe/outbox/queue.h", "src/device/lock.h",
           "src/device/ec_registers.h", "src/platform/waits.h", "src/platform/windows/handle.h", "src/update/updater.h",
           "src/update/ec_settings.h", "simulator/machine.h", "client/splitter.h", "client/include/tarn/reply.h",
           "client/tarnctl/session.h", "panel/look/theme.h", "panel/computer/drawing.h", "panel/client/header.h",
           "panel/window/window.h"]


class CheckIncludes(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = pathlib.Path(folder.name)
        for header in HEADERS:
            self.write(header, "#pragma once")

    def write(self, name, *lines):
        path = self.tree / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text("\n".join(lines) + "\n")

    def said(self):
        run = subprocess.run([sys.executable, SCRIPT, self.tree], stderr=subprocess.PIPE, text=True)
        self.assertEqual(run.returncode, 1 if run.stderr else 0)
        return run.stderr

    def test_lets_pass_what_points_downwards(self):
        self.write("src/pipe/server.cpp", '#include "pipe/server.h"', "#include <QObject>", '#include "device/lock.h"',
                   '#include "pipe/outbox/queue.h"', '#include "server.moc"')
        self.write("src/platform/windows/waits.cpp", '#include "platform/waits.h"', '#include "handle.h"')
        self.write("simulator/ec.cpp", '#include "device/ec_registers.h"', '#include "platform/waits.h"')
        self.assertEqual(self.said(), "")

    def test_prints_the_line_that_points_upwards(self):
        self.write("src/device/lock.cpp", '#include "device/lock.h"', "", '#  include "pipe/server.h"')
        self.assertEqual(self.said(), 'src/device/lock.cpp:3: "pipe/server.h": device stands below pipe\n')

    def test_takes_a_subfolder_for_a_layer_of_its_own(self):
        self.write("src/pipe/outbox/queue.cpp", '#include "pipe/server.h"')
        self.assertEqual(self.said(),
                         'src/pipe/outbox/queue.cpp:1: "pipe/server.h": pipe/outbox stands below pipe\n')

    def test_refuses_what_one_system_alone_has(self):
        self.write("src/pipe/server.cpp", '#include "platform/windows/handle.h"')
        self.assertIn('src/pipe/server.cpp:1: "platform/windows/handle.h": is of one system only', self.said())

    def test_refuses_angle_brackets_and_paths_that_go_up_alike(self):
        self.write("src/device/lock.cpp", "#include <pipe/server.h>", '#include "../pipe/server.h"')
        self.assertIn("src/device/lock.cpp:1:", self.said())
        self.assertIn("src/device/lock.cpp:2:", self.said())

    def test_keeps_the_halves_of_the_panel_apart(self):
        self.write("panel/computer/drawing.cpp", '#include "panel/computer/drawing.h"', '#include "panel/look/theme.h"',
                   '#include "simulator/machine.h"', '#include "device/ec_registers.h"')
        self.write("panel/client/header.cpp", '#include "panel/look/theme.h"', "#include <tarn/reply.h>")
        self.write("panel/window/window.cpp", '#include "panel/client/header.h"', '#include "panel/computer/drawing.h"')
        self.assertEqual(self.said(), "")
        self.write("panel/computer/drawing.cpp", '#include "tarn/reply.h"', '#include "panel/client/header.h"',
                   '#include "platform/waits.h"')
        self.write("panel/client/header.cpp", '#include "simulator/machine.h"', '#include "client/splitter.h"')
        self.write("panel/look/theme.cpp", '#include "panel/window/window.h"')
        self.write("panel/other/thing.cpp", "")
        said = self.said()
        for line in ("computer/drawing.cpp:1: \"tarn/reply.h\": not for panel/computer", "computer/drawing.cpp:2:",
                     "computer/drawing.cpp:3:", "client/header.cpp:1:", "client/header.cpp:2:", "look/theme.cpp:1:",
                     "other/thing.cpp:1:"):
            self.assertIn(f"panel/{line}", said)

    def test_keeps_the_simulator_out_of_the_service(self):
        self.write("src/platform/waits.cpp", '#include "simulator/machine.h"')
        self.assertIn("src/platform/waits.cpp:1:", self.said())

    def test_refuses_service_headers_to_programs_beside_it(self):
        self.write("simulator/ec.cpp", '#include "device/lock.h"')
        self.write("client/main.cpp", '#include "src/update/updater.h"')
        self.assertIn("simulator/ec.cpp:1:", self.said())
        self.assertIn("client/main.cpp:1:", self.said())

    def test_lets_the_client_include_itself_and_the_rules_of_firmware(self):
        self.write("client/splitter.cpp", '#include "splitter.h"', '#include "client/splitter.h"',
                   '#include "tarn/reply.h"', '#include "update/ec_settings.h"', "#include <windows.h>")
        self.write("client/tarnctl/main.cpp", '#include "client/splitter.h"', '#include "client/tarnctl/session.h"',
                   "#include <tarn/reply.h>")
        self.assertEqual(self.said(), "")

    def test_keeps_the_client_library_free_of_its_tool_and_of_other_programs(self):
        self.write("client/splitter.cpp", '#include "client/tarnctl/session.h"', '#include "tarnctl/session.h"',
                   '#include "simulator/machine.h"', '#include "../simulator/machine.h"',
                   '#include "update/updater.h"')
        self.write("client/tarnctl/main.cpp", '#include "simulator/machine.h"')
        for line in ("splitter.cpp:1", "splitter.cpp:2", "splitter.cpp:3", "splitter.cpp:4", "splitter.cpp:5",
                     "tarnctl/main.cpp:1"):
            self.assertIn(f"client/{line}:", self.said())

    def test_lets_applications_see_public_headers_qt_and_the_standard_library(self):
        for name in ("client/include/tarn/client.h", "examples/cpp/main.cpp"):
            self.write(name, "#include <tarn/reply.h>", "#include <QObject>", "#include <QtCore/QObject>",
                       "#include <chrono>")
        self.assertEqual(self.said(), "")

    def test_refuses_to_applications_what_is_not_installed(self):
        for name in ("client/include/tarn/client.h", "examples/cpp/main.cpp"):
            self.write(name, '#include "splitter.h"', "#include <tarn/splitter.h>", '#include "client/splitter.h"',
                       "#include <windows.h>", '#include "update/ec_settings.h"')
            for line in range(1, 6):
                self.assertIn(f"{name}:{line}: ", self.said())

    def test_asks_for_the_place_of_a_new_folder(self):
        self.write("src/fan/fan.cpp")
        self.assertIn('src/fan/fan.cpp:1: the folder "fan" is no layer yet', self.said())


if __name__ == "__main__":
    unittest.main()
