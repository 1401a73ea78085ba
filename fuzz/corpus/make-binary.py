#!/usr/bin/env python3
"""Writes the inputs of the corpus that are not UTF-8: a table in code page 932 and in EUC, and zips of one.

    fuzz/corpus/make-binary.py          the same bytes each time
"""
import io
import pathlib
import zipfile

FOLDER = pathlib.Path(__file__).parent / "Compiler"
ROW = '13101,"100  ","1000001","ﾄｳｷﾖｳﾄ","ﾁﾖﾀﾞｸ","ﾁﾖﾀﾞ(1-2)","東京都","千代田区","千代田（１～２）",0,0,0,0,0,0\r\n'


def zip_of(members, method):
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w", method) as archive:
        for name, data in members:
            archive.writestr(zipfile.ZipInfo(name, (2026, 5, 29, 0, 0, 0)), data, method)
    return file.getvalue()


table = ROW.encode("cp932")
(FOLDER / "cp932").write_bytes(table)
(FOLDER / "euc").write_bytes(ROW.replace("～", "〜").encode("euc_jisx0213"))
(FOLDER / "zip-stored").write_bytes(zip_of([("KEN_ALL.CSV", table)], zipfile.ZIP_STORED))
(FOLDER / "zip-deflated").write_bytes(zip_of([("utf_ken_all.csv", ROW.encode() * 3)], zipfile.ZIP_DEFLATED))
(FOLDER / "zip-two").write_bytes(zip_of([("a.csv", table), ("b.csv", table)], zipfile.ZIP_STORED))
(FOLDER / "zip-none").write_bytes(zip_of([("a.txt", table)], zipfile.ZIP_STORED))
