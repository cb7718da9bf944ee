#!/usr/bin/python3
# SPDX-FileCopyrightText: Velmora
# SPDX-License-Identifier: LicenseRef-Commercial-Usage
"""Saves, edits, applies and deletes a project in the development host as a screen reader's user does: knows nothing but
the names, roles and texts that the program tells AT-SPI, and does nothing but the actions that it offers there. Only the
entry of a selector, which offers none, is chosen with keys.

    at_spi_client.py DEVHOST

Starts that program on the small site, with an X server, a session bus and a home of its own. Prints each step with its
outcome; exits with 1 at the first step that fails. Needs the Debian packages that scripts/setup names for it, and with
them Debian's own interpreter.
"""
import contextlib
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import zipfile

SITE = pathlib.Path(__file__).resolve().parents[2] / "devhost/sites/small.json"
WAIT_S = 60
KEY_DOWN, KEY_RETURN = 0xFF54, 0xFF0D
PROJECT, COMMENT = "Evening show", "Saved without looking"
RENAMED, PROOF = "Evening show 晚会", "What the other device has now"
MAIN_HALL, SIDE_STAGE = "ST-1600 Main hall (192.168.1.11)", "ST-1600 Side stage (192.168.1.12)"
BACKUP_QUESTION = "Whether the current configuration needs to be backed up before the project file is imported?"
DELETE_QUESTION = "Confirm to delete the selected project file?"


class Failure(Exception):
    pass


class Changing(Exception):
    """What was looked at has gone meanwhile, or does not fit together yet."""


def require(condition, failure):
    if not condition:
        raise Failure(failure)


class Reader:
    """Finds what is shown by role and name, and acts on it. Hears what dialogs and labels announce: the program says that
    a name has changed, and the reader asks for it, as a screen reader does. Of texts that follow each other at once it
    hears the last."""

    def __init__(self, program):
        self.program = program
        self.said = []
        self.listener = Atspi.EventListener.new(self.hear)
        for event in ("object:property-change:accessible-name", "window", "object:children-changed",
                      "object:state-changed", "object:text-changed"):
            self.listener.register(event)
        self.application = self.wait_for(self.find_application, "the program to appear on the accessibility bus")
        # What is asked for is what the program says now.
        self.application.set_cache_mask(Atspi.Cache.NONE)
        self.window = self.wait_for(lambda: self.top_level(Atspi.Role.FRAME), "the window")
        self.table = self.find(self.window, Atspi.Role.TABLE, "Project file")
        self.panel = self.table.get_parent()
        self.status_bar = next(one for one in children_of(self.window) if one.get_role() == Atspi.Role.STATUS_BAR)

    def hear(self, event):
        with contextlib.suppress(GLib.Error):
            announcing = (Atspi.Role.DIALOG, Atspi.Role.LABEL)
            if event.type == "object:property-change:accessible-name" and event.source.get_role() in announcing:
                self.said.append(event.source.get_name())

    def find_application(self):
        return next((one for one in children_of(Atspi.get_desktop(0))
                     if one.get_process_id() == self.program.pid), None)

    def wait_for(self, condition, what):
        """The first value of `condition` that is not false. It is asked at each event and a few times a second, since
        files tell nothing."""
        end = time.monotonic() + WAIT_S
        obstacle = ""
        waker = GLib.timeout_add(100, lambda: True)
        try:
            while True:
                try:
                    value = condition()
                    if value:
                        return value
                except (GLib.Error, Changing) as error:
                    obstacle = f": {error}"
                require(self.program.poll() is None, f"the program ended with {self.program.poll()}, no {what}")
                require(time.monotonic() < end, f"waited too long for {what}{obstacle}")
                GLib.MainContext.default().iteration(True)
        finally:
            GLib.source_remove(waker)

    def top_level(self, role, is_it=lambda one: True):
        return next((one for one in children_of(self.application)
                     if one.get_role() == role and is_shown(one) and is_it(one)), None)

    def find(self, root, role, name):
        return self.wait_for(lambda: next((one for one in shown_below(root)
                                           if one.get_role() == role and one.get_name() == name), None),
                             f"a {Atspi.role_get_name(role)} \"{name}\"")

    def button(self, root, name):
        return self.find(root, Atspi.Role.PUSH_BUTTON, name)

    def press(self, button):
        self.wait_for(lambda: button.get_state_set().contains(Atspi.StateType.SENSITIVE),
                      f"the button \"{button.get_name()}\" to be enabled")
        act(button, "Press")

    def enter(self, dialog, field, text):
        field = self.find(dialog, Atspi.Role.TEXT, field)
        require(Atspi.EditableText.set_text_contents(field, text), f"the field does not accept \"{text}\"")
        self.wait_for(lambda: Atspi.Text.get_text(field, 0, -1) == text, f"the field to show \"{text}\"")

    def dialog(self, title):
        return self.wait_for(lambda: self.top_level(Atspi.Role.DIALOG, lambda one: one.get_name() == title),
                             f"the dialog \"{title}\"")

    def answer(self, text, button):
        """Waits for a message box, which must have that text, and presses that button."""
        box = self.wait_for(lambda: self.top_level(Atspi.Role.DIALOG, Atspi.Accessible.get_description),
                            f"the message \"{text}\"")
        require(box.get_description() == text, f"expected the message \"{text}\", met \"{box.get_description()}\"")
        self.press(self.button(box, button))

    def selector(self):
        """The selector, which is named by its entry: found by its label."""
        def is_labelled(one):
            labels = [relation.get_target(0).get_name() for relation in one.get_relation_set()
                      if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY]
            return labels == ["Device"]

        return self.wait_for(lambda: next((one for one in shown_below(self.panel)
                                           if one.get_role() == Atspi.Role.COMBO_BOX and is_labelled(one)), None),
                             "a selector with the label \"Device\"")

    def require_device(self, device):
        self.wait_for(lambda: self.selector().get_name() == device, f"the selector to show \"{device}\"")

    def select_device(self, device):
        """Opens the selector and chooses the entry below the current one."""
        act(self.selector(), "Press")
        self.wait_for(lambda: self.application.get_child_count() > 1, "the selector to open")
        for key in (KEY_DOWN, KEY_RETURN):
            Atspi.generate_keyboard_event(key, None, Atspi.KeySynthType.SYM)
        self.require_device(device)

    def wait_until_idle(self):
        self.wait_for(lambda: not self.top_level(Atspi.Role.DIALOG), "all dialogs to close")

    def wait_for_status(self, text):
        self.wait_for(lambda: any(one.get_name() == text and is_shown(one) for one in children_of(self.status_bar)),
                      f"the status bar to say: {text}")

    def rows(self):
        """The buttons of each project, by its name: a child of the table, of a cell, and of its buttons."""
        rows = {}
        for row in range(Atspi.Table.get_n_rows(self.table)):
            name, cell = (present(Atspi.Table.get_accessible_at(self.table, row, column)) for column in (0, 2))
            buttons = {button.get_name(): button for button in children_of(cell)}
            for button in buttons.values():
                if button.get_parent() != cell or cell.get_parent() != self.table:
                    raise Changing(f"the way up from \"{button.get_name()}\" does not lead to the table")
            rows[name.get_name()] = buttons
        return rows

    def wait_for_rows(self, names):
        self.wait_for(lambda: sorted(self.rows()) == sorted(names), f"the table to list {names}")

    def press_in_row(self, button, project):
        name = f"{button}, {project}"
        self.press(self.wait_for(lambda: self.rows().get(project, {}).get(name), f"the button \"{name}\" in its row"))


def present(one):
    if not one:
        raise Changing("something has gone while it was looked at")
    return one


def children_of(parent):
    return [present(parent.get_child_at_index(index)) for index in range(parent.get_child_count())]


def is_shown(one):
    return one.get_state_set().contains(Atspi.StateType.SHOWING)


def shown_below(root):
    for child in filter(is_shown, children_of(root)):
        yield child
        yield from shown_below(child)


def act(one, action):
    actions = [Atspi.Action.get_action_name(one, index) for index in range(Atspi.Action.get_n_actions(one))]
    require(action in actions, f"\"{one.get_name()}\" offers {actions}, not {action}")
    Atspi.Action.do_action(one, actions.index(action))


def package_of(project):
    return pathlib.Path.home() / f"Documents/Velmora/Tarvo/ProjectFiles/{project}.corvelpro"


def pictures_in_package(project, comment):
    """The pictures' checksums by name. The package must be whole and have that name and comment in its record."""
    with zipfile.ZipFile(package_of(project)) as package:
        require(package.testzip() is None, f"{package.testzip()} is damaged")
        record = json.loads(package.comment)
        pictures = {entry.filename: entry.CRC for entry in package.infolist() if entry.filename.endswith(".png")}
    require(record["projectName"] == project and record["comment"] == comment, f"the package says {record}")
    require(pictures, "the package has no pictures")
    return pictures


def find_the_way(reader):
    reader.require_device(MAIN_HALL)
    reader.wait_for_rows([])
    return "the selector is on the main hall, and no project is listed"


def save(reader, project):
    reader.press(reader.button(reader.panel, "Save Project"))
    dialog = reader.dialog("project attribute")
    reader.enter(dialog, "Project name", project)
    reader.enter(dialog, "Commect", COMMENT)
    reader.press(reader.button(dialog, "OK"))
    reader.wait_for_status(f"Saved \"{project}\"")
    reader.wait_until_idle()
    return pictures_in_package(project, COMMENT)


def save_first_device(reader):
    pictures = save(reader, PROJECT)
    reader.wait_for_rows([PROJECT])
    reader.wait_for(lambda: any(text.startswith("Saving the gallery [") for text in reader.said),
                    "the waiting dialog to announce the pictures")
    reader.wait_for(lambda: f"Saved \"{PROJECT}\"" in reader.said, "the status bar to announce the end")
    return f"{len(pictures)} pictures are in the package, {len(reader.said)} texts were announced"


def edit(reader):
    reader.press_in_row("Edit", PROJECT)
    dialog = reader.dialog("project attribute")
    reader.enter(dialog, "Project name", RENAMED)
    reader.press(reader.button(dialog, "OK"))
    reader.wait_for_rows([RENAMED])
    reader.wait_until_idle()
    require(not package_of(PROJECT).exists(), "the package has two names")
    pictures_in_package(RENAMED, COMMENT)
    return f"the row and its buttons are called \"{RENAMED}\""


def apply_to_second_device(reader):
    reader.select_device(SIDE_STAGE)
    reader.press_in_row("Apply", RENAMED)
    reader.answer(BACKUP_QUESTION, "No")
    reader.wait_for_status("Applied to \"Side stage\"")
    reader.wait_until_idle()
    after = save(reader, PROOF)
    require(after == pictures_in_package(RENAMED, COMMENT), "the device has other pictures than the project")
    return f"a save of that device holds the {len(after)} pictures of the project"


def delete(reader):
    reader.press_in_row("Delete", RENAMED)
    reader.answer(DELETE_QUESTION, "No")
    reader.wait_until_idle()
    require(package_of(RENAMED).exists(), "it was deleted in spite of the answer")
    reader.press_in_row("Delete", RENAMED)
    reader.answer(DELETE_QUESTION, "Yes")
    reader.wait_for_rows([PROOF])
    reader.wait_until_idle()
    require(not package_of(RENAMED).exists() and package_of(PROOF).exists(), "another file was deleted")
    return "its row and its file are gone, the other project stays"


def run_steps(devhost):
    program = subprocess.Popen([devhost, "--site", str(SITE), "--language", "en"], stdin=subprocess.DEVNULL)
    try:
        reader = None
        for title, work in (("find the page of project files", find_the_way),
                            (f"save the device as \"{PROJECT}\"", save_first_device),
                            ("give it another name", edit),
                            ("apply it to another device", apply_to_second_device),
                            ("delete it", delete)):
            print(f"By accessible names alone: {title} ... ", end="", flush=True)
            start = time.monotonic()
            reader = reader or Reader(program)
            outcome = work(reader)
            print(f"{outcome} ({time.monotonic() - start:.1f} s)", flush=True)
    except (Failure, GLib.Error) as failure:
        print(f"FAILED: {failure}", flush=True)
        return 1
    finally:
        program.terminate()
        program.wait()
    return 0


def run_in_session(devhost):
    """Does the same in a session of its own. What its daemons and the program log is shown after a failure."""
    with tempfile.TemporaryDirectory(prefix="at-spi-client-") as home, tempfile.TemporaryFile("w+") as log:
        environment = dict(os.environ, HOME=home, XDG_CONFIG_HOME=home, XDG_DATA_HOME=home, XDG_CACHE_HOME=home,
                           XDG_RUNTIME_DIR=home, LC_ALL="C.UTF-8", QT_QPA_PLATFORM="xcb",
                           # Without it Qt talks to screen readers only that have announced themselves.
                           QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        for name in ("AT_SPI_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY", "XAUTHORITY"):
            environment.pop(name, None)
        # By default the server resets when its last client leaves: a client that connects at that moment is dropped.
        server = ["xvfb-run", "-a", "-s", "-screen 0 1280x800x24 -noreset"]
        # The daemons talk on the standard output as well.
        steps = os.dup(sys.stdout.fileno())
        result = subprocess.run([*server, "dbus-run-session", "--", sys.executable, __file__, devhost, str(steps)],
                                env=environment, pass_fds=(steps,), stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                check=False).returncode
        if result != 0:
            log.seek(0)
            print(log.read(), file=sys.stderr)
        return result


if __name__ == "__main__":
    if len(sys.argv) == 3:
        # In the session: the second argument is where the steps are printed.
        sys.stdout = os.fdopen(int(sys.argv[2]), "w")
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi, GLib
        Atspi.set_timeout(WAIT_S * 1000, WAIT_S * 1000)
        sys.exit(run_steps(sys.argv[1]))
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(run_in_session(sys.argv[1]))
