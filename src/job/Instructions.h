#pragma once
// Every instruction class of the job program model and their factory, for
// users that build instructions (e.g. the continuous-motion queue):
//
//   std::unique_ptr<qrx::Command> command = qrx::newCommand(1);   // MOVJ
//   auto *move = static_cast<qrx::MoveCommand *>(command.get());
//   move->paraV->data = 50; move->paraV->m_vUnit = 2;
//   Json::Value json = command->toJson();
//
// or qrx::createCommand(json, table) from a JSON object.

#include "job/AxisCommands.h"
#include "job/Command.h"
#include "job/CommandFactory.h"
#include "job/Condition.h"
#include "job/FlowCommands.h"
#include "job/HandlingCommands.h"
#include "job/IoCommands.h"
#include "job/MoveCommand.h"
#include "job/ParaCommand.h"
#include "job/PositionCommands.h"
#include "job/RobotPos.h"
#include "job/WeldCommands.h"
