"""Commands that change the town, and what must be true of it after each, however it ended."""
import csv
import io


def commands(number):
    """The command of that round, and the label of the well that it adds, if it adds one."""
    label = f"w{number}"
    at = f"{number % 40 * 10 + 5},{number // 40 * 10 + 5}"
    add = ("add", "well", "town.orm", "--at", at, "--label", label, "--rate", "1", "--radius", "0.1")
    others = {
        2: ("window", "town.orm", "--window", f"-600,-500,600,{500 + number}"),
        4: ("solve", "town.orm"),
    }
    if number % 5 in others:
        return others[number % 5], None
    return add, label


class Rounds:
    """The rounds of a trial on its town: in each a command and the call on files that the fault is for.

    The first command of a kind goes without one, which tells how many calls it makes.
    """

    def __init__(self, trial):
        self.trial = trial
        self.known = {"first"}  # labels of the wells that must be there

    def __iter__(self):
        lengths = {}
        for number in range(self.trial.rounds):
            arguments, label = commands(number)
            kind = arguments[0]
            if kind in lengths:
                yield number, arguments, label, self.trial.random.randint(1, lengths[kind])
                continue
            lengths[kind] = self.trial.calls_of(*arguments)
            if label:
                self.known.add(label)

    def check(self, label, acknowledged, where):
        self.known = check_after(self.trial, self.known, label, acknowledged, where)

    def count_none(self):
        """What was looked for and not found counts too."""
        for what in ("lost", "locked", "torn", "crashed"):
            self.trial.count(what, 0)


def wells(trial):
    """Labels of the wells that have a place, as the program tells them; None when it refuses."""
    done = trial.run("sql", "town.orm", "select Label from Wells inner join Vertices on Wells.VID=Vertices.VID", "--csv")
    if done is None or done.returncode != 0:
        trial.found("locked", f"reading: {done.stderr if done else 'hung'}")
        return None
    return {row["Label"] for row in csv.DictReader(io.StringIO(done.stdout))}


def check_after(trial, known, label, acknowledged, where):
    """What is there now; findings for what is lost, for halves, and for a project that does not open."""
    there = wells(trial)
    if there is None:
        return known
    expected = known | ({label} if label and acknowledged else set())
    lost = expected - there
    trial.expect(not lost, "lost", f"{lost}, {where}")
    trial.expect(there - known <= {label}, "torn", f"{there - known}, {where}")
    if trial.random.random() < 0.2:
        done = trial.run("window", "town.orm", "--extents")
        trial.expect(done is not None and done.returncode == 0, "locked", f"writing: {where} {done}")
    return there
