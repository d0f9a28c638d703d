"""Projects as earlier versions of the program left them: a present one taken back step by step."""
import sqlite3


def drop(db, table, *fields):
    for field in fields:
        for (name,) in db.execute("select name from sqlite_master where type='index' and tbl_name=? and sql like ?",
                                  (table, f'%"{field}"%')).fetchall():
            db.execute(f'drop index "{name}"')
        db.execute(f'alter table "{table}" drop column "{field}"')


def drop_tables(db, *tables):
    for table in tables:
        db.execute(f'drop table "{table}"')


def back_to_207(db):
    drop(db, "LinesinkStrings", "Farfield")
    # What no earlier version had.
    drop(db, "LinesinkStrings", "EndInflow", "EndStream", "Overlandflow", "ScenResistance")
    drop(db, "Polygons", "ObsDischarge")
    drop(db, "WHPAs", "Outline")
    drop_tables(db, "Zones")


def back_to_206(db):
    drop(db, "LinesinkStrings", "AutoSWIZC")
    db.execute("alter table Inhomogeneities rename column ChangeK to K")
    db.execute("alter table Inhomogeneities rename column ChangeB to B")
    drop(db, "Inhomogeneities", "ChangeR", "ChangeP", "ChangeA")
    for name in "KB":
        db.execute(f"alter table Inhomogeneities add column Change{name} INTEGER default 0")
        db.execute(f"update Inhomogeneities set Change{name}=abs({name})")
        drop(db, "Inhomogeneities", name)
    db.execute("update Inhomogeneities set Recharge=-Recharge where Recharge<>0")
    db.execute("update Inhomogeneities set AverageHead=-9999 where AverageHead="
               "(select AQBase+cast(AQThickness as real) from Model) and PID%2=0")


def back_to_205(db):
    drop(db, "Basemaps", "ColorField", "UseColorField")
    drop_tables(db, "MapLabels")


def back_to_204(db):
    drop_tables(db, "INResults", "NFResults")
    db.execute("create table INResults (Label VARCHAR(255), VadoxLabel VARCHAR(255), X1 DOUBLE, Y1 DOUBLE, X2 DOUBLE,"
               " Y2 DOUBLE, VertexStrength DOUBLE, CenterStrength DOUBLE, VertexError DOUBLE, CenterError DOUBLE)")
    db.execute("insert into INResults values ('old','IN_1',1,2,3,4,5,6,7,8)")
    db.execute("alter table Model add column CONTOURDetailed BOOLEAN default 0")
    db.execute("update Model set CONTOURDetailed=case when CONTOURLevel=80 then -1 else 0 end")
    drop(db, "Model", "CONTOURLevel")
    db.execute("delete from Vertices where PID=-10")


def back_to_203(db):
    drop(db, "Model", "DefaultFont", "DefaultFontSize", "DefaultFontBold", "DefaultFontItalic")


def back_to_202(db):
    drop(db, "Wells", "PathlineColor")
    drop_tables(db, "WHPAs")


def back_to_201(db):
    drop(db, "Model", "ViewErrorLog", "ViewMessageLog")


def back_to_200(_):
    pass


def back_to_100(db):
    drop(db, "Project", "OrmelBasePath", "OrmelBaseName", "ProjectVersion")
    db.execute("alter table Wells add column PumpingRate DOUBLE default 0")
    db.execute("update Wells set PumpingRate=Head")
    drop(db, "Wells", "HeadSpecified", "Head", "StartElev", "Pond", "PPWell", "Transient")
    drop_tables(db, "LSResults", "Inhomogeneities", "INResults", "WLResults")
    db.execute("create table LSResults (PID INTEGER, SpecHead DOUBLE, ModelHead DOUBLE, DPStrength DOUBLE,"
               " SinkDensity DOUBLE, Vertex INTEGER, X DOUBLE, Y DOUBLE, Length DOUBLE)")
    db.execute("insert into LSResults values (1,2,3,4,5,6,7,8,9)")
    drop(db, "NoFlowStrings", "Closed", "HydCond", "Thickness", "Porosity", "BottomElevation", "Color")
    drop(db, "LinesinkStrings", "Resistance", "Width", "Depth", "Drain", "Routing")
    drop(db, "Model", "SOLVERX0", "SOLVERY0", "SOLVERIterations", "SOLVERConjunctive", "GRID3D", "GRIDHorzSlice3D",
         "GRIDVertSlice3D", "WINDOWZ1", "WINDOWZ2")
    db.execute("alter table Model add column SolverCustomIterations INTEGER default 3")
    db.execute("alter table Model add column SOLVERDefault INTEGER default 1")


STEPS = [(207, back_to_207), (206, back_to_206), (205, back_to_205), (204, back_to_204), (203, back_to_203),
         (202, back_to_202), (201, back_to_201), (200, back_to_200), (100, back_to_100)]
VERSIONS = [version for version, _ in STEPS]


def make_older(path, version):
    """Takes the project back to that version."""
    db = sqlite3.connect(path)
    db.execute("drop table if exists Checksums")
    for to, step in STEPS:
        if to < version:
            break
        step(db)
        if to > 100:
            db.execute("update Project set ProjectVersion=?", (to,))
    db.commit()
    db.close()


def shape(path):
    """Every table, field, type, size, default, rule and index, as the file declares them."""
    db = sqlite3.connect(path)
    rows = db.execute("select type,name,tbl_name,sql from sqlite_master where name not like 'sqlite_%'").fetchall()
    db.close()
    return {(kind, name): " ".join((sql or "").split()) for kind, name, _, sql in rows}


def rows(path):
    """What the project holds, by table."""
    db = sqlite3.connect(path)
    tables = [name for (name,) in db.execute("select name from sqlite_master where type='table'"
                                             " and name not like 'sqlite_%' order by name")]
    held = {table: db.execute(f'select * from "{table}"').fetchall() for table in tables}
    db.close()
    return held
