<?xml version="1.0" encoding="UTF-8" standalone="no" ?><!DOCTYPE dita PUBLIC "-//OASIS//DTD DITA Composite//EN" "ditabase.dtd"><?Qs BoolCondExpr  State 1?><dita><topic id="id-7"><title>Sub</title></topic><topic id="id-8">
  <title>C</title>
  <body/>
</topic></dita>