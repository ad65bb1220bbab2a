<?xml version="1.0" encoding="UTF-8" standalone="no" ?><!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "ditabase.dtd"><?Qs BoolCondExpr  State 1?><dita><topic id="id-4"><title/></topic><topic id="id-5">
  <title>A</title>
  <body><p audience="a">stays</p></body>
</topic></dita>